// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Availability.h"
#include "MossbankCore/Ports/NotificationCenter.h"

#include <optional>

namespace mossbank {

/// What tells that the user leaves and comes back: sleep and wake, the screen's lock, the change to
/// another user's session. Under which names, `InactivityEvent` and `ReturnEvent` say. It tells
/// also of the end of all that.
///
/// Threading: the main thread.
/// Errors: none. What cannot be told is not told, and `availability` says so.
class SessionEvents {
public:
    /// Told by `workspace`: the machine, or the session with all that runs in it, is about to end.
    static constexpr char16_t kWillPowerOff[] = u"NSWorkspaceWillPowerOffNotification";

    SessionEvents() = default;
    virtual ~SessionEvents() = default;
    SessionEvents(const SessionEvents&) = delete;
    SessionEvents& operator=(const SessionEvents&) = delete;

    virtual Availability availability() const = 0;

    /// Tells of sleep, wake, the session and the end.
    virtual NotificationCenter& workspace() = 0;
    /// Tells of the lock.
    virtual NotificationCenter& distributed() = 0;

    /// Whether this login session is the one in front. Absent when nothing says.
    virtual std::optional<bool> isOnConsole() const = 0;
};

} // namespace mossbank
