// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/SecureInput.h"

#include <utility>

namespace mossbank {

/// A desktop that does not tell when something secret is typed.
class NullSecureInput final : public SecureInput {
public:
    explicit NullSecureInput(QString reason)
        : m_reason(std::move(reason))
    {
    }

    Availability availability() const override { return Availability::missing(m_reason); }
    bool isActive() const override { return false; }

private:
    QString m_reason;
};

} // namespace mossbank
