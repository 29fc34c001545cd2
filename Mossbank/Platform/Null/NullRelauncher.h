// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Relauncher.h"
#include "MossbankCore/Support/Failure.h"

#include <utility>

namespace mossbank {

/// A system on which the program cannot start itself.
class NullRelauncher final : public Relauncher {
public:
    explicit NullRelauncher(QString reason)
        : m_reason(std::move(reason))
    {
    }

    Availability availability() const override { return Availability::missing(m_reason); }
    void openAnother() override { throw Failure(m_reason); }

private:
    QString m_reason;
};

} // namespace mossbank
