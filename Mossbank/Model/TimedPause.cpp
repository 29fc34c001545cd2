// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/TimedPause.h"

#include "Mossbank/Model/Preferences.h"
#include "MossbankCore/Capture/PauseLength.h"
#include "MossbankCore/Ports/Clock.h"

namespace mossbank {

TimedPause::TimedPause(Clock& clock, Preferences& preferences, QObject* parent)
    : QObject(parent)
    , m_clock(clock)
    , m_preferences(preferences)
{
}

void TimedPause::resumePause(Date until)
{
    setPausedUntil(until);
    m_resumeTask = Job::start(&TimedPause::waitUntil, this, until);
}

void TimedPause::cancelPause()
{
    m_resumeTask = Job();
    setPausedUntil(std::nullopt);
    m_preferences.removePausedUntil();
}

QCoro::Task<> TimedPause::waitUntil(Date date, Cancellation cancellation)
{
    while (const auto left = PauseTick::next(date, m_clock.now())) {
        if (!co_await m_clock.sleep(*left, cancellation))
            co_return;
    }
    Q_EMIT due();
}

void TimedPause::setPausedUntil(std::optional<Date> date)
{
    if (m_pausedUntil == date)
        return;
    m_pausedUntil = date;
    QMetaObject::invokeMethod(this, &TimedPause::pausedUntilChanged, Qt::QueuedConnection);
}

} // namespace mossbank
