// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Availability.h"

namespace mossbank {

/// Whether the user is about to type something secret: a password field has the focus, or a
/// prompt for a key or a pin is up.
///
/// Threading: the main thread. Answers at once.
class SecureInput {
public:
    SecureInput() = default;
    virtual ~SecureInput() = default;
    SecureInput(const SecureInput&) = delete;
    SecureInput& operator=(const SecureInput&) = delete;

    virtual Availability availability() const = 0;
    virtual bool isActive() const = 0;
};

} // namespace mossbank
