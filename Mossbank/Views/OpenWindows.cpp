// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/OpenWindows.h"

#include <QGuiApplication>
#include <QWindow>

namespace mossbank {

namespace {

QWindowList openWindows()
{
    QWindowList windows = QGuiApplication::topLevelWindows();
    windows.removeIf([](const QWindow* window) {
        return !window->isVisible() || window->type() == Qt::Popup ||
               window->flags().testFlag(Qt::BypassWindowManagerHint);
    });
    return windows;
}

} // namespace

bool OpenWindows::areAny()
{
    return !openWindows().isEmpty();
}

void OpenWindows::bringToFront()
{
    for (QWindow* const window : openWindows()) {
        window->setWindowStates(window->windowStates() & ~Qt::WindowMinimized);
        window->raise();
        window->requestActivate();
    }
}

} // namespace mossbank
