// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Support/SystemClock.h"

#include <QDeadlineTimer>

#include <time.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace mossbank {

namespace {

QDeadlineTimer deadline(double seconds)
{
    constexpr double kNanoseconds = 1e9;
    constexpr double kLongest = 1e9; // some thirty years, and not near the limits of 64 bits
    if (seconds >= kLongest)
        return QDeadlineTimer(QDeadlineTimer::Forever, Qt::PreciseTimer);
    QDeadlineTimer due(Qt::PreciseTimer);
    // In this order a number that is none counts as zero.
    due.setPreciseRemainingTime(
        0, static_cast<qint64>(std::ceil(std::max(0.0, seconds) * kNanoseconds)), Qt::PreciseTimer);
    return due;
}

/// A timer counts whole milliseconds, and no more than 24 days of them.
std::chrono::milliseconds untilNextLook(const QDeadlineTimer& due)
{
    constexpr std::chrono::milliseconds kADay = std::chrono::hours(24);
    if (due.isForever())
        return kADay;
    const auto left = std::chrono::nanoseconds(due.remainingTimeNSecs());
    return std::min(kADay, std::chrono::ceil<std::chrono::milliseconds>(left));
}

} // namespace

std::chrono::nanoseconds processorTimeOfThread()
{
    timespec time = {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

Date SystemClock::now() const
{
    const auto since1970 = std::chrono::system_clock::now().time_since_epoch();
    return {std::chrono::duration<double>(since1970).count()};
}

Clock::Alarm SystemClock::setAlarm(double seconds, std::function<void()> ring)
{
    const Alarm alarm = ++m_lastAlarm;
    auto timer = std::make_unique<QTimer>();
    timer->setSingleShot(true);
    timer->setTimerType(Qt::PreciseTimer);
    const auto due = deadline(seconds);
    QObject::connect(timer.get(), &QTimer::timeout,
                     [this, alarm, due, timer = timer.get(), ring = std::move(ring)] {
                         if (!due.hasExpired()) {
                             timer->start(untilNextLook(due));
                             return;
                         }
                         clearAlarm(alarm);
                         ring();
                     });
    timer->start(untilNextLook(due));
    m_timers.emplace(alarm, std::move(timer));
    return alarm;
}

void SystemClock::clearAlarm(Alarm alarm)
{
    const auto found = m_timers.find(alarm);
    if (found == m_timers.end())
        return;
    // Possibly inside its own signal: it must live until that returns, and be silent, for an event
    // loop inside another may turn before it is deleted.
    found->second->stop();
    found->second.release()->deleteLater();
    m_timers.erase(found);
}

} // namespace mossbank
