// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Availability.h"

namespace mossbank {

/// Whether there is anybody who can see the screen. Asked anew at every capture.
///
/// Threading: the main thread. Answers at once.
class ScreenState {
public:
    ScreenState() = default;
    virtual ~ScreenState() = default;
    ScreenState(const ScreenState&) = delete;
    ScreenState& operator=(const ScreenState&) = delete;

    virtual Availability availability() const = 0;

    /// Whether the session is locked. False where nothing says so.
    virtual bool isLocked() const = 0;
    /// Whether the main display is switched off.
    virtual bool isMainDisplayAsleep() const = 0;
};

} // namespace mossbank
