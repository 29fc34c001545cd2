// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/X11Desktop.h"

#include "Mossbank/Platform/Linux/X11Properties.h"

#include <xcb/randr.h>
#include <xcb/res.h>

#include <algorithm>

namespace mossbank {

namespace {

/// The one display of a server that knows nothing of displays.
constexpr DisplayID kOnlyDisplay = 1;
constexpr quint32 kMaxWindowBytes = 64 * 1024;

QHash<quint32, qint64> processesOf(const X11Connection& connection,
                                   const xcb_res_query_client_ids_reply_t* reply)
{
    QHash<quint32, qint64> processes;
    if (!reply)
        return processes;
    for (auto ids = xcb_res_query_client_ids_ids_iterator(reply); ids.rem > 0;
         xcb_res_client_id_value_next(&ids)) {
        if (xcb_res_client_id_value_value_length(ids.data) < 1)
            continue;
        const quint32 process = *xcb_res_client_id_value_value(ids.data);
        // 0 and -1 are how servers say that they do not know.
        if (process != 0 && process != ~quint32{0})
            processes.insert(connection.clientOf(ids.data->spec.client), process);
    }
    return processes;
}

/// By the window that a window manager has for this. It names itself, so that one that happens to
/// have the number of a window manager's that has ended is not taken for it.
std::optional<quint32> managerOf(const X11Connection& connection, std::optional<quint32> window)
{
    if (!window)
        return {};
    const auto asked =
        connection.askProperty(*window, connection[Atom::NetSupportingWmCheck], sizeof(quint32));
    if (readNumber(connection.property(asked).get()) != window)
        return {};
    return connection.clientOf(*window);
}

xcb_res_query_client_ids_cookie_t askProcesses(const X11Connection& connection, quint32 resource)
{
    const xcb_res_client_id_spec_t spec = {resource, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    return xcb_res_query_client_ids(connection, 1, &spec);
}

void readDisplays(X11Desktop& desktop, const xcb_randr_get_monitors_reply_t* reply)
{
    for (auto monitors = xcb_randr_get_monitors_monitors_iterator(reply); monitors.rem > 0;
         xcb_randr_monitor_info_next(&monitors)) {
        const xcb_randr_monitor_info_t& monitor = *monitors.data;
        const QRect frame(monitor.x, monitor.y, monitor.width, monitor.height);
        if (!frame.intersects(desktop.frame))
            continue;
        desktop.displays.append({monitor.name, frame});
        if (monitor.primary && !desktop.mainDisplay)
            desktop.mainDisplay = monitor.name;
    }
    if (!desktop.mainDisplay && !desktop.displays.isEmpty())
        desktop.mainDisplay = desktop.displays.constFirst().id;
}

} // namespace

X11Desktop X11Desktop::read(const X11Connection& connection)
{
    const xcb_window_t root = connection.root();
    const auto treeAsked = xcb_query_tree(connection, root);
    const auto frameAsked = xcb_get_geometry(connection, root);
    const auto managedAsked =
        connection.askProperty(root, connection[Atom::NetClientList], kMaxWindowBytes);
    const auto workspaceAsked =
        connection.askProperty(root, connection[Atom::NetCurrentDesktop], sizeof(quint32));
    const auto managerAsked =
        connection.askProperty(root, connection[Atom::NetSupportingWmCheck], sizeof(quint32));
    const auto compositorAsked =
        xcb_get_selection_owner(connection, connection[Atom::NetCompositor]);
    xcb_randr_get_monitors_cookie_t displaysAsked = {};
    if (connection.hasRandr())
        displaysAsked = xcb_randr_get_monitors(connection, root, 1);
    xcb_res_query_client_ids_cookie_t processesAsked = {};
    if (connection.hasRes())
        processesAsked = askProcesses(connection, XCB_NONE);

    X11Desktop desktop;
    const auto tree = connection.reply<xcb_query_tree_reply_t>(treeAsked);
    if (tree) {
        const xcb_window_t* const first = xcb_query_tree_children(tree.get());
        desktop.windows = {first, first + tree->children_len};
    }
    if (const auto frame = connection.reply<xcb_get_geometry_reply_t>(frameAsked))
        desktop.frame = QRect(0, 0, frame->width, frame->height);
    desktop.managed = readNumbers(connection.property(managedAsked).get());
    const auto workspace = readNumber(connection.property(workspaceAsked).get());
    const auto manager = readNumber(connection.property(managerAsked).get());
    desktop.windowManager = managerOf(connection, manager);
    const auto compositor = connection.reply<xcb_get_selection_owner_reply_t>(compositorAsked);
    desktop.hasCompositor = compositor && compositor->owner != XCB_NONE;
    if (desktop.hasCompositor && manager &&
        connection.clientOf(*manager) == connection.clientOf(compositor->owner))
        desktop.workspace = workspace;
    if (connection.hasRandr()) {
        if (const auto displays = connection.reply<xcb_randr_get_monitors_reply_t>(displaysAsked))
            readDisplays(desktop, displays.get());
    } else {
        desktop.displays = {{kOnlyDisplay, desktop.frame}};
        desktop.mainDisplay = kOnlyDisplay;
    }
    if (connection.hasRes()) {
        desktop.processes = processesOf(
            connection, connection.reply<xcb_res_query_client_ids_reply_t>(processesAsked).get());
    }
    connection.requireAlive();
    return desktop;
}

std::optional<Display> X11Desktop::display(DisplayID id) const
{
    const auto found = std::ranges::find(displays, id, &Display::id);
    return found == displays.end() ? std::nullopt : std::optional(*found);
}

bool isWithinWayland(const X11Connection& connection)
{
    // Newer ones say so by an extension; all of them name their displays alike.
    const QByteArray name = "XWAYLAND";
    const auto extension = connection.reply<xcb_query_extension_reply_t>(
        xcb_query_extension(connection, static_cast<quint16>(name.size()), name.constData()));
    if (extension && extension->present)
        return true;
    if (!connection.hasRandr())
        return false;
    for (const auto& display : X11Desktop::read(connection).displays) {
        const auto called =
            connection.reply<xcb_get_atom_name_reply_t>(xcb_get_atom_name(connection, display.id));
        if (called && QByteArray(xcb_get_atom_name_name(called.get()),
                                 xcb_get_atom_name_name_length(called.get()))
                          .startsWith(name))
            return true;
    }
    return false;
}

std::optional<qint64> processBehind(const X11Connection& connection, quint32 resource)
{
    if (!connection.hasRes())
        return {};
    const auto reply =
        connection.reply<xcb_res_query_client_ids_reply_t>(askProcesses(connection, resource));
    const auto processes = processesOf(connection, reply.get());
    return processes.isEmpty() ? std::nullopt : std::optional(*processes.constBegin());
}

} // namespace mossbank
