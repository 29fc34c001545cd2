// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/X11Windows.h"

#include <xcb/shape.h>

#include <algorithm>
#include <limits>

namespace mossbank {

namespace {

constexpr quint32 kEveryWorkspace = 0xffffffff;
constexpr quint32 kFullOpacity = 0xffffffff;
constexpr quint32 kMaxRegionBytes = 4096;
constexpr quint8 kDepthWithAlpha = 32;
constexpr int kDesktopLayer = -1;
constexpr int kPanelLayer = 20;
constexpr int kMenuLayer = 25;

int layerOf(const X11Connection& connection, const QList<quint32>& types,
            const X11TopLevel& topLevel)
{
    for (const quint32 type : types) {
        if (type == connection[Atom::NetWmTypeDesktop])
            return kDesktopLayer;
        if (type == connection[Atom::NetWmTypeDock])
            return kPanelLayer;
        for (const Atom menu :
             {Atom::NetWmTypeNotification, Atom::NetWmTypeTooltip, Atom::NetWmTypeMenu,
              Atom::NetWmTypePopupMenu, Atom::NetWmTypeDropdownMenu, Atom::NetWmTypeCombo,
              Atom::NetWmTypeDnd}) {
            if (type == connection[menu])
                return kMenuLayer;
        }
        for (const Atom ordinary :
             {Atom::NetWmTypeNormal, Atom::NetWmTypeDialog, Atom::NetWmTypeUtility,
              Atom::NetWmTypeToolbar, Atom::NetWmTypeSplash}) {
            if (type == connection[ordinary] && !topLevel.clients.isEmpty())
                return 0;
        }
    }
    // A frame overrides redirection too, but it has a program's window inside.
    return topLevel.overridesRedirect && topLevel.clients.isEmpty() ? kMenuLayer : 0;
}

/// Title, layer and whether it shows: what is told of a window beside its owner.
class Details {
public:
    Details(const X11Connection& connection, const X11TopLevel& topLevel)
        : m_connection(connection)
        , m_topLevel(topLevel)
        , m_name(ask(Atom::NetWmName, kMaxTitleBytes))
        , m_oldName(connection.askProperty(topLevel.subject(), XCB_ATOM_WM_NAME, kMaxTitleBytes))
        , m_types(ask(Atom::NetWmType, kMaxAtomsBytes))
        , m_states(ask(Atom::NetWmState, kMaxAtomsBytes))
        , m_workspace(ask(Atom::NetWmDesktop, sizeof(quint32)))
    {
    }

    void readInto(X11Window& window, const X11Desktop& desktop) const
    {
        const QString oldName = readText(m_connection, m_connection.property(m_oldName).get());
        window.title = readText(m_connection, m_connection.property(m_name).get());
        if (window.title.isEmpty())
            window.title = oldName;
        window.layer =
            layerOf(m_connection, readNumbers(m_connection.property(m_types).get()), m_topLevel);
        const auto states = readNumbers(m_connection.property(m_states).get());
        const quint32 workspace =
            readNumber(m_connection.property(m_workspace).get()).value_or(kEveryWorkspace);
        const bool isHere =
            workspace == kEveryWorkspace || !desktop.workspace || workspace == *desktop.workspace;
        const bool isOnDisplay = std::ranges::any_of(desktop.displays, [&](const Display& one) {
            return one.frame.intersects(window.frame);
        });
        window.isOnScreen = m_topLevel.isViewable && isHere && isOnDisplay &&
                            !states.contains(m_connection[Atom::NetWmStateHidden]);
    }

private:
    xcb_get_property_cookie_t ask(Atom property, quint32 maxBytes) const
    {
        return m_connection.askProperty(m_topLevel.subject(), m_connection[property], maxBytes);
    }

    const X11Connection& m_connection;
    const X11TopLevel& m_topLevel;
    xcb_get_property_cookie_t m_name;
    xcb_get_property_cookie_t m_oldName;
    xcb_get_property_cookie_t m_types;
    xcb_get_property_cookie_t m_states;
    xcb_get_property_cookie_t m_workspace;
};

/// What of a window hides what lies below: its shape, less what a compositor lets shine through.
class Opacity {
public:
    Opacity(const X11Connection& connection, const X11Desktop& desktop, const X11TopLevel& topLevel)
        : m_connection(connection)
        , m_topLevel(topLevel)
        , m_isComposed(desktop.hasCompositor)
    {
        if (connection.hasShape())
            m_shape = xcb_shape_get_rectangles(connection, topLevel.id, XCB_SHAPE_SK_BOUNDING);
        if (!m_isComposed)
            return;
        const xcb_window_t subject = topLevel.subject();
        m_frameOpacity = connection.askProperty(topLevel.id, connection[Atom::NetWmWindowOpacity],
                                                sizeof(quint32));
        m_opacity =
            connection.askProperty(subject, connection[Atom::NetWmWindowOpacity], sizeof(quint32));
        m_region =
            connection.askProperty(subject, connection[Atom::NetWmOpaqueRegion], kMaxRegionBytes);
        m_origin = xcb_translate_coordinates(connection, subject, connection.root(), 0, 0);
    }

    QRegion read() const
    {
        const QRegion shape = readShape();
        if (!m_isComposed)
            return shape;
        const quint32 opacity =
            std::min(readNumber(m_connection.property(m_frameOpacity).get()).value_or(kFullOpacity),
                     readNumber(m_connection.property(m_opacity).get()).value_or(kFullOpacity));
        const auto numbers = readNumbers(m_connection.property(m_region).get());
        const auto origin = m_connection.reply<xcb_translate_coordinates_reply_t>(m_origin);
        if (opacity != kFullOpacity || !origin)
            return {};
        if (m_topLevel.depth != kDepthWithAlpha)
            return shape;
        QRegion opaque;
        for (qsizetype at = 0; at + 3 < numbers.size(); at += 4) {
            const auto number = [&](qsizetype offset) {
                constexpr quint32 kFarthest = std::numeric_limits<quint16>::max();
                return static_cast<int>(std::min(numbers[at + offset], kFarthest));
            };
            opaque +=
                QRect(origin->dst_x + number(0), origin->dst_y + number(1), number(2), number(3));
        }
        return opaque & shape;
    }

private:
    QRegion readShape() const
    {
        if (!m_connection.hasShape())
            return m_topLevel.frame;
        const auto reply = m_connection.reply<xcb_shape_get_rectangles_reply_t>(m_shape);
        if (!reply)
            return {};
        const QPoint origin =
            m_topLevel.frame.topLeft() + QPoint(m_topLevel.border, m_topLevel.border);
        QRegion shape;
        const xcb_rectangle_t* const first = xcb_shape_get_rectangles_rectangles(reply.get());
        for (int index = 0; index < xcb_shape_get_rectangles_rectangles_length(reply.get());
             ++index)
            shape += QRect(first[index].x, first[index].y, first[index].width, first[index].height)
                         .translated(origin);
        return shape & m_topLevel.frame;
    }

    const X11Connection& m_connection;
    const X11TopLevel& m_topLevel;
    bool m_isComposed;
    xcb_shape_get_rectangles_cookie_t m_shape = {};
    xcb_get_property_cookie_t m_frameOpacity = {};
    xcb_get_property_cookie_t m_opacity = {};
    xcb_get_property_cookie_t m_region = {};
    xcb_translate_coordinates_cookie_t m_origin = {};
};

} // namespace

QList<X11Window> readWindows(const X11Connection& connection, const X11Desktop& desktop,
                             X11Scope scope)
{
    const QList<X11TopLevel> topLevels = readTopLevels(connection, desktop, scope);
    QList<Details> details;
    QList<Opacity> opacities;
    for (const X11TopLevel& topLevel : topLevels) {
        if (scope == X11Scope::All)
            details.append(Details(connection, topLevel));
        else
            opacities.append(Opacity(connection, desktop, topLevel));
    }
    const QList<QList<X11Owner>> owners = readOwners(connection, desktop, topLevels);

    QList<X11Window> windows;
    for (qsizetype index = 0; index < topLevels.size(); ++index) {
        X11Window window = {
            topLevels[index].frame,     {}, owners[index], {}, 0, false, topLevels[index].id,
            topLevels[index].isViewable};
        if (scope == X11Scope::All)
            details[index].readInto(window, desktop);
        else
            window.opaque = opacities[index].read();
        windows.append(window);
    }
    connection.requireAlive();
    return windows;
}

} // namespace mossbank
