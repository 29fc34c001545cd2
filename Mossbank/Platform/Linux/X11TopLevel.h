// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/X11Desktop.h"

#include <QList>
#include <QRect>
#include <QSet>

namespace mossbank {

/// A child of the root, and what is known of the windows inside it.
struct X11TopLevel {
    xcb_window_t id = XCB_NONE;
    /// With its border, in the desktop's coordinates.
    QRect frame;
    int border = 0;
    quint8 depth = 0;
    bool isViewable = false;
    bool overridesRedirect = false;
    /// Whether a window manager made it around a program's window. Where no window manager says
    /// that it is one, nobody's window counts as such.
    bool isFrame = false;
    /// The windows of programs that a window manager put inside, or this one itself. Empty for
    /// menus and the like, and where no window manager runs.
    QList<xcb_window_t> clients;
    /// The clients of the server that made this window or one inside it, the server left out.
    QSet<quint32> makers;
    /// Windows at any depth that others than this one's maker put inside, the clients too. Of a
    /// frame's own windows it is not asked what is inside beside its clients.
    QList<xcb_window_t> guests;

    /// The window that carries what is said about this one.
    xcb_window_t subject() const { return clients.value(0, id); }
    /// The windows that say whose this one is. A program that has another's window inside its own,
    /// as a popup has, draws around it.
    QList<xcb_window_t> speakers() const
    {
        QList<xcb_window_t> windows = clients;
        if (!isFrame && !clients.contains(id))
            windows.append(id);
        return windows;
    }
};

/// Which of the root's children to read.
enum class X11Scope : quint8 {
    /// What can be seen: it is all that a picture needs.
    Viewable,
    /// Also what a window manager has put away, minimised or on another workspace.
    All,
};

/// The children of the root that show something, front to back. A window that has gone meanwhile
/// is not among them.
QList<X11TopLevel> readTopLevels(const X11Connection& connection, const X11Desktop& desktop,
                                 X11Scope scope);

} // namespace mossbank
