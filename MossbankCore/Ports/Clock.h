// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/Cancellation.h"
#include "MossbankCore/Support/Date.h"

#include <QtGlobal>

#include <coroutine>
#include <functional>

namespace mossbank {

/// The time of day, and sleep. Nothing reads the one or does the other but through here, so that
/// a test can hold a clock that moves when told.
///
/// Threading: the main thread, except `now`, which any thread may call.
class Clock {
public:
    class Sleep;

    Clock() = default;
    virtual ~Clock() = default;
    Clock(const Clock&) = delete;
    Clock& operator=(const Clock&) = delete;

    /// The wall clock: it jumps when the user or the network sets it.
    virtual Date now() const = 0;

    /// `co_await clock.sleep(30, cancellation)` goes on with true after the seconds have passed,
    /// whatever becomes of the wall clock meanwhile (time that the machine is suspended need not
    /// count); or with false as soon as cancellation is
    /// requested. After false, ask what of your own is still there.
    Sleep sleep(double seconds, Cancellation cancellation);

protected:
    using Alarm = quint64;

    /// Calls `ring` once, `seconds` from now, unless cleared before then.
    virtual Alarm setAlarm(double seconds, std::function<void()> ring) = 0;
    virtual void clearAlarm(Alarm alarm) = 0;
};

/// What `Clock::sleep` gives to be awaited, at once and where it was made.
class [[nodiscard]] Clock::Sleep {
public:
    Sleep(Clock& clock, double seconds, Cancellation cancellation);

    bool await_ready() const { return m_cancellation.isRequested(); }
    void await_suspend(std::coroutine_handle<> sleeper);
    bool await_resume();

private:
    Clock& m_clock;
    double m_seconds;
    Cancellation m_cancellation;
};

} // namespace mossbank
