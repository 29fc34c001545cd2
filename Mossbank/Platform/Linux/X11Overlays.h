// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/WindowClass.h"
#include "Mossbank/Platform/Linux/X11Connection.h"

#include <QList>

namespace mossbank {

/// A window that is where it is without asking the window manager.
struct X11Overlay {
    WindowClass windowClass;
    /// Whether it hides a whole display from the user and is not a frame that the window manager
    /// made for a program's window. Only of those without a class, and not of this program's own.
    bool hidesDisplay = false;
};

/// Those that show. Throws a Failure when the connection is broken. Where a reply is missing so
/// may one of them be.
QList<X11Overlay> readOverlays(const X11Connection& connection);

} // namespace mossbank
