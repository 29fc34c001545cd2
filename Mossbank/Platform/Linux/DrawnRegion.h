// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/X11Connection.h"

#include <QRegion>

#include <xcb/damage.h>
#include <xcb/xfixes.h>

#include <optional>

namespace mossbank {

/// What has been drawn on the screen since it was last asked for.
///
/// Threading: the connection's. It belongs to one connection, which ends what it has made there.
class DrawnRegion {
public:
    explicit DrawnRegion(const X11Connection& connection);
    Q_DISABLE_COPY_MOVE(DrawnRegion)

    /// Asks, and begins anew from here. Grab the server around it and around what goes with it.
    void ask();
    /// The answer. Absent where the server does not tell; empty when the answer was lost.
    std::optional<QRegion> read();

private:
    const X11Connection& m_connection;
    xcb_damage_damage_t m_damage = XCB_NONE;
    xcb_xfixes_region_t m_region = XCB_NONE;
    xcb_xfixes_fetch_region_cookie_t m_asked = {};
};

} // namespace mossbank
