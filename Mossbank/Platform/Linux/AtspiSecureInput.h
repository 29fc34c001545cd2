// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/Accessibility.h"
#include "Mossbank/Ports/SecureInput.h"

#include <memory>

namespace mossbank {

/// Secret is what is typed into a password field of the active window, into a prompt for a pin, a
/// key or the system's password, and into a locker.
class AtspiSecureInput final : public SecureInput {
public:
    explicit AtspiSecureInput(std::shared_ptr<Accessibility> accessibility);

    /// What can be told by the class of a window alone is told also when this is missing.
    Availability availability() const override;
    bool isActive() const override { return m_accessibility->isSecretTyped(); }

private:
    std::shared_ptr<Accessibility> m_accessibility;
};

} // namespace mossbank
