// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/ProgramActivation.h"

#include <utility>

namespace mossbank {

/// A desktop on which starts of the program do not reach each other.
class NullProgramActivation final : public ProgramActivation {
public:
    explicit NullProgramActivation(QString reason)
        : m_reason(std::move(reason))
    {
    }

    Availability availability() const override { return Availability::missing(m_reason); }
    void listen() override {}
    bool activateFirst(qint64) override { return false; }

private:
    QString m_reason;
};

} // namespace mossbank
