// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/X11Owners.h"

#include <QRegion>

namespace mossbank {

/// A window with all that the server tells of it.
struct X11Window {
    QRect frame;
    /// The part through which nothing below can be seen. Only in the scope of what is viewable.
    QRegion opaque;
    QList<X11Owner> owners;
    /// These three only in the scope of all.
    QString title;
    int layer = 0;
    bool isOnScreen = false;
    xcb_window_t id = XCB_NONE;
    bool isViewable = false;
};

/// The windows front to back. Grab the server around it and around what has to go with it.
/// Throws a Failure when the connection is broken.
QList<X11Window> readWindows(const X11Connection& connection, const X11Desktop& desktop,
                             X11Scope scope);

} // namespace mossbank
