// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/ScreenState.h"
#include "Mossbank/Ports/SecureInput.h"

namespace mossbank {

class FakeScreenState final : public ScreenState {
public:
    bool isLockedNow = false;
    bool isAsleepNow = false;

    Availability availability() const override { return {}; }
    bool isLocked() const override { return isLockedNow; }
    bool isMainDisplayAsleep() const override { return isAsleepNow; }
};

class FakeSecureInput final : public SecureInput {
public:
    bool isActiveNow = false;

    Availability availability() const override { return {}; }
    bool isActive() const override { return isActiveNow; }
};

} // namespace mossbank
