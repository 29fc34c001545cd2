// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/X11Connection.h"

#include "Mossbank/Platform/Linux/X11Opening.h"
#include "MossbankCore/Support/Failure.h"

#include <QDeadlineTimer>

#include <poll.h>
#include <sys/socket.h>
#include <xcb/damage.h>
#include <xcb/dpms.h>
#include <xcb/randr.h>
#include <xcb/res.h>
#include <xcb/screensaver.h>
#include <xcb/shape.h>
#include <xcb/shm.h>
#include <xcb/xfixes.h>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

constexpr std::array<const char*, static_cast<std::size_t>(Atom::Count)> kAtomNames = {
    "_GTK_APPLICATION_ID",
    "_KDE_NET_WM_DESKTOP_FILE",
    "_NET_ACTIVE_WINDOW",
    "_NET_CLIENT_LIST",
    "_NET_WM_CM_S", // the number of the screen comes behind it
    "_NET_CURRENT_DESKTOP",
    "_NET_SUPPORTING_WM_CHECK",
    "_NET_SYSTEM_TRAY_S", // the same
    "_NET_WM_DESKTOP",
    "_NET_WM_NAME",
    "_NET_WM_OPAQUE_REGION",
    "_NET_WM_PID",
    "_NET_WM_STATE",
    "_NET_WM_STATE_HIDDEN",
    "_NET_WM_WINDOW_TYPE",
    "_NET_WM_WINDOW_TYPE_COMBO",
    "_NET_WM_WINDOW_TYPE_DESKTOP",
    "_NET_WM_WINDOW_TYPE_DIALOG",
    "_NET_WM_WINDOW_TYPE_DND",
    "_NET_WM_WINDOW_TYPE_DOCK",
    "_NET_WM_WINDOW_TYPE_DROPDOWN_MENU",
    "_NET_WM_WINDOW_TYPE_MENU",
    "_NET_WM_WINDOW_TYPE_NORMAL",
    "_NET_WM_WINDOW_TYPE_NOTIFICATION",
    "_NET_WM_WINDOW_TYPE_POPUP_MENU",
    "_NET_WM_WINDOW_TYPE_SPLASH",
    "_NET_WM_WINDOW_TYPE_TOOLBAR",
    "_NET_WM_WINDOW_TYPE_TOOLTIP",
    "_NET_WM_WINDOW_TYPE_UTILITY",
    "_NET_WM_WINDOW_OPACITY",
    "UTF8_STRING",
    "WM_STATE",
};

const xcb_screen_t* screenAt(xcb_connection_t* connection, int number)
{
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    while (screens.rem > 1 && number-- > 0)
        xcb_screen_next(&screens);
    return screens.rem > 0 ? screens.data : nullptr;
}

bool isPresent(xcb_connection_t* connection, xcb_extension_t& extension)
{
    const xcb_query_extension_reply_t* data = xcb_get_extension_data(connection, &extension);
    return data && data->present;
}

} // namespace

X11Connection::X11Connection(int patience, const std::stop_token& ending)
    : m_name(qgetenv("DISPLAY"))
    , m_patience(patience)
{
    if (m_name.isEmpty())
        throw Failure(u"There is no X display: DISPLAY is not set."_s);
    const X11Opened opened = openConnection(m_name, patience, ending);
    if (!opened.connection)
        throw Failure(u"The X display %1 does not answer."_s.arg(QString::fromLocal8Bit(m_name)));
    m_connection = opened.connection;
    m_screenNumber = opened.screenNumber;
    if (!xcb_connection_has_error(m_connection))
        m_screen = screenAt(m_connection, m_screenNumber);
    if (!m_screen) {
        xcb_disconnect(m_connection);
        throw Failure(u"The X display %1 cannot be opened."_s.arg(QString::fromLocal8Bit(m_name)));
    }
    findExtensions();
    findAtoms();
}

X11Connection::~X11Connection()
{
    xcb_disconnect(m_connection);
}

quint32 X11Connection::clientOf(quint32 resource) const
{
    return resource & ~xcb_get_setup(m_connection)->resource_id_mask;
}

xcb_get_property_cookie_t X11Connection::askProperty(xcb_window_t window, xcb_atom_t property,
                                                     quint32 maxBytes) const
{
    return xcb_get_property(m_connection, 0, window, property, XCB_ATOM_ANY, 0, (maxBytes + 3) / 4);
}

bool X11Connection::isBroken() const
{
    return xcb_connection_has_error(m_connection) != 0;
}

void X11Connection::dropEvents() const
{
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)})
        continue;
}

void X11Connection::requireAlive() const
{
    if (isBroken())
        throw Failure(
            u"The connection to the X display %1 is lost."_s.arg(QString::fromLocal8Bit(m_name)));
    if (m_isSilent)
        throw Failure(u"The X display %1 does not answer."_s.arg(QString::fromLocal8Bit(m_name)));
}

void X11Connection::interrupt() const
{
    ::shutdown(xcb_get_file_descriptor(m_connection), SHUT_RDWR);
}

void* X11Connection::wait(unsigned int sequence) const
{
    const QDeadlineTimer deadline(m_isSilent ? 0 : m_patience);
    void* reply = nullptr;
    xcb_generic_error_t* error = nullptr;
    xcb_flush(m_connection);
    while (!xcb_poll_for_reply(m_connection, sequence, &reply, &error)) {
        if (isBroken())
            return nullptr;
        pollfd socket = {xcb_get_file_descriptor(m_connection), POLLIN, 0};
        const auto left = static_cast<int>(deadline.remainingTime());
        if (left == 0 || ::poll(&socket, 1, left) == 0) {
            xcb_discard_reply(m_connection, sequence);
            m_isSilent = true;
            return nullptr;
        }
    }
    std::free(error);
    return reply;
}

void X11Connection::findAtoms()
{
    std::array<xcb_intern_atom_cookie_t, kAtomNames.size()> cookies = {};
    for (std::size_t index = 0; index < cookies.size(); ++index) {
        QByteArray name = kAtomNames.at(index);
        if (index == static_cast<std::size_t>(Atom::NetCompositor) ||
            index == static_cast<std::size_t>(Atom::NetSystemTray))
            name += QByteArray::number(m_screenNumber);
        cookies.at(index) =
            xcb_intern_atom(m_connection, 0, static_cast<quint16>(name.size()), name.constData());
    }
    for (std::size_t index = 0; index < cookies.size(); ++index) {
        if (const auto atom = reply<xcb_intern_atom_reply_t>(cookies.at(index)))
            m_atoms.at(index) = atom->atom;
    }
}

void X11Connection::findExtensions()
{
    m_hasShape = isPresent(m_connection, xcb_shape_id);
    m_hasDpms = isPresent(m_connection, xcb_dpms_id);
    m_hasScreenSaver = isPresent(m_connection, xcb_screensaver_id);
    // A server adapts to the version that it is asked for, so each has to be asked.
    if (isPresent(m_connection, xcb_shm_id)) {
        const auto version =
            reply<xcb_shm_query_version_reply_t>(xcb_shm_query_version(m_connection));
        // Handing over memory by file descriptor came with 1.2.
        m_hasShm = version && (version->major_version > 1 || version->minor_version >= 2);
    }
    if (isPresent(m_connection, xcb_randr_id)) {
        const auto version =
            reply<xcb_randr_query_version_reply_t>(xcb_randr_query_version(m_connection, 1, 5));
        m_hasRandr = version && (version->major_version > 1 || version->minor_version >= 5);
    }
    if (isPresent(m_connection, xcb_res_id)) {
        const auto version =
            reply<xcb_res_query_version_reply_t>(xcb_res_query_version(m_connection, 1, 2));
        m_hasRes = version && (version->server_major > 1 || version->server_minor >= 2);
    }
    if (isPresent(m_connection, xcb_xfixes_id)) {
        const auto version =
            reply<xcb_xfixes_query_version_reply_t>(xcb_xfixes_query_version(m_connection, 2, 0));
        // Regions came with 2.0.
        m_hasFixes = version && version->major_version >= 2;
    }
    if (m_hasFixes && isPresent(m_connection, xcb_damage_id)) {
        const auto version =
            reply<xcb_damage_query_version_reply_t>(xcb_damage_query_version(m_connection, 1, 1));
        m_hasDamage = version != nullptr;
    }
}

ServerGrab::ServerGrab(const X11Connection& connection)
    : m_connection(connection)
{
    xcb_grab_server(m_connection);
}

ServerGrab::~ServerGrab()
{
    xcb_ungrab_server(m_connection);
    xcb_flush(m_connection);
}

} // namespace mossbank
