// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/X11DisplayPower.h"

#include "MossbankCore/Support/Failure.h"

#include <xcb/dpms.h>
#include <xcb/randr.h>
#include <xcb/screensaver.h>

namespace mossbank {

X11DisplayPower::X11DisplayPower() = default;

X11DisplayPower::~X11DisplayPower() = default;

std::optional<bool> X11DisplayPower::isAsleep()
{
    try {
        if (!m_connection || m_connection->isBroken())
            m_connection = std::make_unique<X11Connection>(X11Connection::kShortPatience);
    } catch (const Failure&) {
        m_connection.reset();
        return std::nullopt;
    }
    m_connection->forgetSilence();
    const bool isAsleep = isOff() || isBlanked() || areNone();
    if (m_connection->isSilent() || m_connection->isBroken())
        return std::nullopt;
    return isAsleep;
}

bool X11DisplayPower::isOff() const
{
    if (!m_connection->hasDpms())
        return false;
    const auto power = m_connection->reply<xcb_dpms_info_reply_t>(xcb_dpms_info(*m_connection));
    return power && isOffBy(power->state != 0, power->power_level);
}

bool X11DisplayPower::isOffBy(bool isEnabled, quint16 level)
{
    return isEnabled && level != XCB_DPMS_DPMS_MODE_ON;
}

bool X11DisplayPower::isBlanked() const
{
    if (!m_connection->hasScreenSaver())
        return false;
    const auto saver = m_connection->reply<xcb_screensaver_query_info_reply_t>(
        xcb_screensaver_query_info(*m_connection, m_connection->root()));
    return saver && saver->state == XCB_SCREENSAVER_STATE_ON;
}

/// Displays that were switched off one by one, as a closed lid or a docking station may do.
bool X11DisplayPower::areNone() const
{
    if (!m_connection->hasRandr())
        return false;
    const auto displays = m_connection->reply<xcb_randr_get_monitors_reply_t>(
        xcb_randr_get_monitors(*m_connection, m_connection->root(), 1));
    return displays && displays->nMonitors == 0;
}

} // namespace mossbank
