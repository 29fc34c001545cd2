// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/X11Overlays.h"

#include "Mossbank/Platform/Linux/X11Desktop.h"
#include "Mossbank/Platform/Linux/X11Properties.h"

#include <QCoreApplication>
#include <QQueue>

#include <algorithm>
#include <vector>

namespace mossbank {

namespace {

struct AskedWindow {
    xcb_window_t id;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
    xcb_get_property_cookie_t windowClass;
};

qint64 areaOf(const QRect& frame)
{
    return qint64{frame.width()} * frame.height();
}

/// A note may be shown on a locker. What lies below windows is a wallpaper.
bool isBelowWindows(const QRect& frame, const QList<QRect>& above)
{
    constexpr int kPart = 8;
    return std::ranges::any_of(
        above, [&](const QRect& other) { return areaOf(other & frame) > areaOf(frame) / kPart; });
}

/// Whether another program's window is inside, at any depth, as in a window manager's frame.
bool holdsAnothers(const X11Connection& connection, xcb_window_t window)
{
    QQueue<xcb_window_t> open;
    open.enqueue(window);
    while (!open.isEmpty()) {
        const auto tree =
            connection.reply<xcb_query_tree_reply_t>(xcb_query_tree(connection, open.dequeue()));
        const xcb_window_t* const first = tree ? xcb_query_tree_children(tree.get()) : nullptr;
        for (int index = 0; tree && index < tree->children_len; ++index) {
            if (connection.clientOf(first[index]) != connection.clientOf(window))
                return true;
            open.enqueue(first[index]);
        }
    }
    return false;
}

bool hidesDisplay(const X11Connection& connection, const X11Desktop& desktop, xcb_window_t window,
                  const QRect& frame, const QList<QRect>& above)
{
    const quint32 maker = connection.clientOf(window);
    const bool isWhole = std::ranges::any_of(
        desktop.displays, [&](const Display& one) { return frame.contains(one.frame); });
    return isWhole && desktop.processes.value(maker) != QCoreApplication::applicationPid() &&
           !isBelowWindows(frame, above) && !holdsAnothers(connection, window);
}

} // namespace

QList<X11Overlay> readOverlays(const X11Connection& connection)
{
    const X11Desktop desktop = X11Desktop::read(connection);
    std::vector<AskedWindow> asked;
    for (auto id = desktop.windows.crbegin(); id != desktop.windows.crend(); ++id) {
        asked.push_back({*id, xcb_get_window_attributes(connection, *id),
                         xcb_get_geometry(connection, *id),
                         connection.askProperty(*id, XCB_ATOM_WM_CLASS, kMaxClassBytes)});
    }
    QList<X11Overlay> overlays;
    QList<QRect> above;
    for (const AskedWindow& window : asked) {
        const auto attributes =
            connection.reply<xcb_get_window_attributes_reply_t>(window.attributes);
        const auto geometry = connection.reply<xcb_get_geometry_reply_t>(window.geometry);
        const auto named = connection.property(window.windowClass);
        if (!attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
            continue;
        // What the server made is what a compositor draws the whole screen into; what is there for
        // input alone, as behind a menu, hides nothing.
        const bool isDrawn = geometry && attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT &&
                             connection.clientOf(window.id) != 0;
        const QRect frame =
            isDrawn ? QRect(geometry->x, geometry->y, geometry->width + 2 * geometry->border_width,
                            geometry->height + 2 * geometry->border_width)
                    : QRect();
        if (attributes->override_redirect) {
            X11Overlay overlay = {.windowClass = readClass(named.get())};
            overlay.hidesDisplay = isDrawn && overlay.windowClass.isEmpty() &&
                                   hidesDisplay(connection, desktop, window.id, frame, above);
            overlays.append(overlay);
        }
        if (isDrawn)
            above.append(frame);
    }
    return overlays;
}

} // namespace mossbank
