// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Support/SystemClock.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

namespace mossbank {

Date SystemClock::now() const
{
    const auto since1970 = std::chrono::system_clock::now().time_since_epoch();
    return {std::chrono::duration<double>(since1970).count()};
}

Clock::Alarm SystemClock::setAlarm(double seconds, std::function<void()> ring)
{
    constexpr double kLongest = std::numeric_limits<int>::max();
    const double milliseconds = std::clamp(seconds * 1000, 0.0, kLongest);
    const Alarm alarm = ++m_lastAlarm;
    auto timer = std::make_unique<QTimer>();
    timer->setSingleShot(true);
    timer->setTimerType(Qt::PreciseTimer);
    QObject::connect(timer.get(), &QTimer::timeout, [this, alarm, ring = std::move(ring)] {
        const auto wake = ring; // clearing the alarm destroys this function
        clearAlarm(alarm);
        wake();
    });
    timer->start(static_cast<int>(milliseconds));
    m_timers.emplace(alarm, std::move(timer));
    return alarm;
}

void SystemClock::clearAlarm(Alarm alarm)
{
    const auto found = m_timers.find(alarm);
    if (found == m_timers.end())
        return;
    // Possibly inside its own signal: it must live until that returns.
    found->second.release()->deleteLater();
    m_timers.erase(found);
}

} // namespace mossbank
