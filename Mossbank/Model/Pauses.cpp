// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/Pauses.h"

#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Model/Recorder.h"
#include "Mossbank/Model/RecorderTexts.h"
#include "Mossbank/Model/Texts.h"
#include "Mossbank/Model/TimedPause.h"
#include "Mossbank/Ports/ScreenState.h"
#include "Mossbank/Ports/SessionEvents.h"
#include "MossbankCore/Ports/Clock.h"

#include <utility>

namespace mossbank {

Pauses::Pauses(Surroundings surroundings, TimedPause& timedPause, Recorder& recorder,
               QObject* parent)
    : QObject(parent)
    , m_around(std::move(surroundings))
    , m_timedPause(timedPause)
    , m_recorder(recorder)
    , m_inactivity(
          m_around.sessionEvents.workspace(), m_around.sessionEvents.distributed(),
          [this](InactivityEvent event) {
              QMetaObject::invokeMethod(
                  this, [this, event] { goAway(event); }, Qt::QueuedConnection);
          },
          [this](ReturnEvent) {
              QMetaObject::invokeMethod(this, &Pauses::awaitReturn, Qt::QueuedConnection);
          })
{
    connect(&m_timedPause, &TimedPause::due, this, &Pauses::resumeAfterPause);
}

Pauses::~Pauses() = default;

// Away

void Pauses::goAway(InactivityEvent event)
{
    if (m_recorder.isRecording())
        m_recorder.stopForAbsence(event.message());
}

void Pauses::awaitReturn()
{
    std::erase_if(m_returns, [](const Job& job) { return !job.isRunning(); });
    m_returns.push_back(Job::start(&Pauses::comeBackSoon, this));
}

QCoro::Task<> Pauses::comeBackSoon(Cancellation cancellation)
{
    // What tells of the return may come before the lock is open and the display on.
    constexpr double kUntilSettled = 1.5;
    if (co_await m_around.clock.sleep(kUntilSettled, cancellation))
        comeBackIfThere();
}

void Pauses::comeBackIfThere()
{
    // Several notifications tell of one return. The first that finds all in order counts; until
    // then the next one tries again.
    if (m_isResting || !m_recorder.stoppedForAway())
        return;
    if (m_around.sessionEvents.isOnConsole() == false)
        return;
    if (m_around.screenState.isLocked() || m_around.screenState.isMainDisplayAsleep())
        return;
    m_recorder.setStoppedForAway(false);
    if (m_around.preferences.resumesAfterAway() && !m_recorder.isRecording() &&
        !m_timedPause.isPaused())
        m_recorder.startWithoutAsking();
}

// For a while

void Pauses::pause(PauseLength length)
{
    if (!m_recorder.isRecording())
        return;
    const Date deadline = length.deadline(m_around.clock.now(), m_around.calendar());
    m_recorder.stopForPause(pausedUntil(deadline), [&] {
        m_around.preferences.setPausedUntil(deadline);
        m_timedPause.resumePause(deadline);
    });
}

void Pauses::cancelTimedPause()
{
    if (!m_timedPause.isPaused())
        return;
    m_timedPause.cancelPause();
    m_recorder.setStatus(RecorderTexts::idle());
}

bool Pauses::resumeStoredPause()
{
    const auto stored = m_around.preferences.pausedUntil();
    if (!stored || *stored <= m_around.clock.now()) {
        m_around.preferences.removePausedUntil();
        return false;
    }
    m_timedPause.resumePause(*stored);
    m_recorder.setStatus(pausedUntil(*stored));
    return true;
}

QString Pauses::pausedUntil(Date date) const
{
    return localized("Paused until %1").arg(m_around.calendar().shortTime(date));
}

void Pauses::rest()
{
    m_isResting = true;
}

void Pauses::resumeAfterPause()
{
    if (m_isResting || !m_timedPause.isPaused())
        return;
    // The one start without a press of the user's that may ask for the permission: the user
    // asked for it when pausing.
    if (!m_recorder.isRecording())
        m_recorder.toggleRecording();
    if (!m_recorder.isRecording())
        m_recorder.setStatus(RecorderTexts::idle());
}

} // namespace mossbank
