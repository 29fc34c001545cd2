// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/QuitEvents.h"

#include <QEvent>
#include <QGuiApplication>
#include <QSessionManager>

namespace mossbank {

QuitEvents::QuitEvents()
{
    qApp->installEventFilter(this);
    // Whether it is started at login is the user's choice, and not that of a session which happened
    // to end while it ran.
    connect(
        qApp, &QGuiApplication::saveStateRequest, this,
        [](QSessionManager& session) { session.setRestartHint(QSessionManager::RestartNever); },
        Qt::DirectConnection);
}

bool QuitEvents::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != qApp || event->type() != QEvent::Quit)
        return false;
    event->ignore();
    // What a session manager says before is no sign: it has work saved also when the session goes
    // on, or long before it ends. Windows and menus of this program ask without an event.
    if (qApp->sessionId().isEmpty())
        Q_EMIT quits();
    else
        Q_EMIT sessionEnds();
    return true;
}

} // namespace mossbank
