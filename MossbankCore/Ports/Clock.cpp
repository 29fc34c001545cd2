// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Ports/Clock.h"

#include <utility>

namespace mossbank {

Clock::Sleep Clock::sleep(double seconds, Cancellation cancellation)
{
    return {*this, seconds, std::move(cancellation)};
}

Clock::Sleep::Sleep(Clock& clock, double seconds, Cancellation cancellation)
    : m_clock(clock)
    , m_seconds(seconds)
    , m_cancellation(std::move(cancellation))
{
}

void Clock::Sleep::await_suspend(std::coroutine_handle<> sleeper)
{
    const Alarm alarm = m_clock.setAlarm(m_seconds, [sleeper] { sleeper.resume(); });
    m_cancellation.setWake([&clock = m_clock, alarm, sleeper] {
        clock.clearAlarm(alarm);
        sleeper.resume();
    });
}

bool Clock::Sleep::await_resume()
{
    m_cancellation.setWake(nullptr);
    return !m_cancellation.isRequested();
}

} // namespace mossbank
