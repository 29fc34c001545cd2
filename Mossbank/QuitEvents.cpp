// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/QuitEvents.h"

#include <QEvent>
#include <QGuiApplication>
#include <QSessionManager>

namespace mossbank {

QuitEvents::QuitEvents()
{
    qApp->installEventFilter(this);
    connect(qApp, &QGuiApplication::commitDataRequest, this, &QuitEvents::sessionEnds,
            Qt::DirectConnection);
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
    Q_EMIT quits();
    return true;
}

} // namespace mossbank
