// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/SessionWatch.h"

#include "MossbankCore/Capture/InactivityMonitor.h"

#include <utility>

namespace mossbank {

using namespace Qt::StringLiterals;

SessionWatch::SessionWatch()
{
    constexpr auto kBetweenLooks = std::chrono::seconds(2);
    m_untilDisplayWakes.setInterval(kBetweenLooks);
    connect(&m_untilDisplayWakes, &QTimer::timeout, this, &SessionWatch::followDisplay);
    connect(&m_logind, &LogindSession::lockedChanged, this, &SessionWatch::followLock);
    connect(&m_screenSavers, &ScreenSavers::activeChanged, this, &SessionWatch::followLock);
    connect(&m_logind, &LogindSession::activeChanged, this, &SessionWatch::followSession);
    connect(&m_logind, &LogindSession::sleepChanged, this, &SessionWatch::followSleep);
    connect(&m_logind, &LogindSession::shutsDown, this,
            [this] { m_workspace.post(QString::fromUtf16(SessionEvents::kWillPowerOff)); });
    m_wasLocked = isLocked();
}

bool SessionWatch::isLocked() const
{
    return m_logind.isLocked() == true || m_screenSavers.isActive();
}

bool SessionWatch::isDisplayAsleep()
{
    const bool isAsleep = m_displayPower.isAsleep().value_or(false);
    if (isAsleep && !m_untilDisplayWakes.isActive())
        m_untilDisplayWakes.start();
    // On the way to sleep the display may still be on.
    return isAsleep || m_logind.isGoingToSleep();
}

void SessionWatch::followLock()
{
    const bool isLockedNow = isLocked();
    if (m_wasLocked == isLockedNow)
        return;
    m_wasLocked = isLockedNow;
    m_distributed.post(m_wasLocked ? InactivityEvent(InactivityEvent::ScreenLocked).name()
                                   : ReturnEvent(ReturnEvent::ScreenUnlocked).name());
}

void SessionWatch::followSession()
{
    const auto isActive = m_logind.isActive();
    // Nothing said is neither a leaving nor a return.
    if (!isActive)
        return;
    m_workspace.post(*isActive ? ReturnEvent(ReturnEvent::SessionActive).name()
                               : InactivityEvent(InactivityEvent::SessionResigned).name());
}

void SessionWatch::followSleep()
{
    m_workspace.post(m_logind.isGoingToSleep() ? InactivityEvent(InactivityEvent::Sleep).name()
                                               : ReturnEvent(ReturnEvent::Wake).name());
}

void SessionWatch::followDisplay()
{
    if (m_displayPower.isAsleep() != false)
        return;
    m_untilDisplayWakes.stop();
    m_workspace.post(ReturnEvent(ReturnEvent::ScreensWake).name());
}

LinuxScreenState::LinuxScreenState(std::shared_ptr<SessionWatch> watch)
    : m_watch(std::move(watch))
{
}

Availability LinuxScreenState::availability() const
{
    if (m_watch->logind().tellsLock() || m_watch->screenSavers().isThere())
        return {};
    return Availability::missing(u"Mossbank cannot tell when the screen is locked: neither logind "
                                 "nor a screen saver of the desktop tells."_s);
}

LinuxSessionEvents::LinuxSessionEvents(std::shared_ptr<SessionWatch> watch)
    : m_watch(std::move(watch))
{
}

Availability LinuxSessionEvents::availability() const
{
    if (m_watch->logind().tellsActive())
        return {};
    return Availability::missing(
        u"Mossbank cannot tell when this computer goes to sleep or "
        "another session comes to the front: logind does not tell of this session."_s);
}

} // namespace mossbank
