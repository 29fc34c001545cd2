// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/LogindSession.h"
#include "Mossbank/Platform/Linux/ScreenSavers.h"
#include "Mossbank/Platform/Linux/X11DisplayPower.h"
#include "Mossbank/Ports/ScreenState.h"
#include "Mossbank/Ports/SessionEvents.h"

#include <QObject>
#include <QTimer>

#include <memory>

namespace mossbank {

/// All that tells whether somebody can see the screen: logind, the desktop's screen saver and the
/// X server.
///
/// Threading: the main thread.
class SessionWatch : public QObject {
    Q_OBJECT

public:
    SessionWatch();

    const LogindSession& logind() const { return m_logind; }
    const ScreenSavers& screenSavers() const { return m_screenSavers; }

    /// By either of the two.
    bool isLocked() const;
    bool isDisplayAsleep();

    NotificationCenter& workspace() { return m_workspace; }
    NotificationCenter& distributed() { return m_distributed; }

private:
    void followLock();
    void followSession();
    void followSleep();
    void followDisplay();

    LogindSession m_logind;
    ScreenSavers m_screenSavers;
    X11DisplayPower m_displayPower;
    NotificationCenter m_workspace;
    NotificationCenter m_distributed{true};
    bool m_wasLocked = false;
    /// Runs while the display sleeps: of DPMS nothing tells when it wakes.
    QTimer m_untilDisplayWakes;
};

/// The port over a watch.
class LinuxScreenState final : public ScreenState {
public:
    explicit LinuxScreenState(std::shared_ptr<SessionWatch> watch);

    Availability availability() const override;
    bool isLocked() const override { return m_watch->isLocked(); }
    bool isMainDisplayAsleep() const override { return m_watch->isDisplayAsleep(); }

private:
    std::shared_ptr<SessionWatch> m_watch;
};

/// The port over a watch.
class LinuxSessionEvents final : public SessionEvents {
public:
    explicit LinuxSessionEvents(std::shared_ptr<SessionWatch> watch);

    Availability availability() const override;
    NotificationCenter& workspace() override { return m_watch->workspace(); }
    NotificationCenter& distributed() override { return m_watch->distributed(); }
    std::optional<bool> isOnConsole() const override { return m_watch->logind().isActive(); }

private:
    std::shared_ptr<SessionWatch> m_watch;
};

} // namespace mossbank
