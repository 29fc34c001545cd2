// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/DrawnRegion.h"

namespace mossbank {

DrawnRegion::DrawnRegion(const X11Connection& connection)
    : m_connection(connection)
{
    if (!connection.hasDamage())
        return;
    m_damage = xcb_generate_id(connection);
    m_region = xcb_generate_id(connection);
    xcb_damage_create(connection, m_damage, connection.root(), XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    xcb_xfixes_create_region(connection, m_region, 0, nullptr);
}

void DrawnRegion::ask()
{
    if (m_damage == XCB_NONE)
        return;
    xcb_damage_subtract(m_connection, m_damage, XCB_NONE, m_region);
    m_asked = xcb_xfixes_fetch_region(m_connection, m_region);
}

std::optional<QRegion> DrawnRegion::read()
{
    if (m_damage == XCB_NONE)
        return {};
    QRegion region;
    const auto reply = m_connection.reply<xcb_xfixes_fetch_region_reply_t>(m_asked);
    if (!reply)
        return region;
    const xcb_rectangle_t* const first = xcb_xfixes_fetch_region_rectangles(reply.get());
    for (int index = 0; index < xcb_xfixes_fetch_region_rectangles_length(reply.get()); ++index)
        region += QRect(first[index].x, first[index].y, first[index].width, first[index].height);
    return region;
}

} // namespace mossbank
