// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/X11Properties.h"
#include "Mossbank/Platform/Linux/X11TopLevel.h"

namespace mossbank {

/// A program that a window is of: the class that it gives itself, its process, or both.
struct X11Owner {
    WindowClass windowClass;
    std::optional<qint64> process;

    friend bool operator==(const X11Owner&, const X11Owner&) = default;
};

/// The owners of each window, in the order of the windows. A window without a class is of every
/// program that the same client of the server or the same process has windows of: menus and
/// tooltips often say nothing of themselves. An empty list: nobody known.
QList<QList<X11Owner>> readOwners(const X11Connection& connection, const X11Desktop& desktop,
                                  const QList<X11TopLevel>& topLevels);

/// The owner that one window names by itself.
X11Owner readOwner(const X11Connection& connection, xcb_window_t window);

} // namespace mossbank
