// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/X11Connection.h"
#include "Mossbank/Ports/Screen.h"

#include <QHash>
#include <QList>
#include <QRect>

#include <optional>

namespace mossbank {

/// What the root of the desktop tells: the displays, the windows' ids, the clients' processes.
struct X11Desktop {
    QRect frame;
    QList<Display> displays;
    std::optional<DisplayID> mainDisplay;
    /// The children of the root, bottom to top, mapped or not.
    QList<xcb_window_t> windows;
    /// The windows that the window manager looks after, also minimised ones.
    QList<xcb_window_t> managed;
    /// The client of the server that manages the windows. Absent where none says so.
    std::optional<quint32> windowManager;
    /// The workspace that shows, where windows of others are mapped all the same: where the window
    /// manager is the compositor, too, and leaves them out of what it draws. Absent elsewhere.
    /// There a window of another workspace is not mapped, and what is mapped shows, although the
    /// one workspace told of may be that of another display.
    std::optional<quint32> workspace;
    /// Whether something draws windows with translucency.
    bool hasCompositor = false;
    /// The process behind each client of the server, as the server knows it. A client on another
    /// machine has none. Client numbers and processes are both used again, so this is good for
    /// one grab only.
    QHash<quint32, qint64> processes;

    /// Throws a Failure when the connection is broken.
    static X11Desktop read(const X11Connection& connection);

    std::optional<Display> display(DisplayID id) const;
};

/// Whether this server only lends its windows to a Wayland session: what it shows is then not what
/// is on the screen.
bool isWithinWayland(const X11Connection& connection);

/// The process behind the client that made `resource`, from the server alone.
std::optional<qint64> processBehind(const X11Connection& connection, quint32 resource);

} // namespace mossbank
