// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/X11TopLevel.h"

#include "Mossbank/Platform/Linux/X11Properties.h"

#include <optional>
#include <utility>

namespace mossbank {

namespace {

constexpr quint32 kWithdrawn = 0;

struct AskedWindow {
    xcb_window_t id;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
};

/// A window inside a top-level one that may be a program's.
struct Candidate {
    qsizetype topLevel;
    xcb_window_t id;
    std::optional<xcb_query_tree_cookie_t> tree;
};

/// Who made the windows that are asked for: the program that made the top-level one, or another.
enum class MadeBy : quint8 { Same, Another };

QList<X11TopLevel> readShown(const X11Connection& connection, const X11Desktop& desktop,
                             X11Scope scope)
{
    QList<AskedWindow> asked;
    for (auto id = desktop.windows.crbegin(); id != desktop.windows.crend(); ++id) {
        asked.append(
            {*id, xcb_get_window_attributes(connection, *id), xcb_get_geometry(connection, *id)});
    }
    QList<X11TopLevel> topLevels;
    for (const AskedWindow& window : asked) {
        const auto attributes =
            connection.reply<xcb_get_window_attributes_reply_t>(window.attributes);
        const auto geometry = connection.reply<xcb_get_geometry_reply_t>(window.geometry);
        if (!attributes || !geometry || attributes->_class == XCB_WINDOW_CLASS_INPUT_ONLY)
            continue;
        const bool isViewable = attributes->map_state == XCB_MAP_STATE_VIEWABLE;
        if (!isViewable && scope == X11Scope::Viewable)
            continue;
        const int border = geometry->border_width;
        topLevels.append({.id = window.id,
                          .frame = QRect(geometry->x, geometry->y, geometry->width + 2 * border,
                                         geometry->height + 2 * border),
                          .border = border,
                          .depth = geometry->depth,
                          .isViewable = isViewable,
                          .overridesRedirect = attributes->override_redirect != 0,
                          .isFrame = false,
                          .clients = {},
                          .makers = {},
                          .guests = {}});
    }
    return topLevels;
}

/// Puts those of one level that are programs' windows among the clients, where there are none yet.
void findClientsAmong(const X11Connection& connection, const QList<Candidate>& level, MadeBy madeBy,
                      QList<X11TopLevel>& topLevels)
{
    QList<std::pair<qsizetype, xcb_get_property_cookie_t>> asked;
    for (qsizetype index = 0; index < level.size(); ++index) {
        const X11TopLevel& topLevel = topLevels[level[index].topLevel];
        const bool isAnothers =
            connection.clientOf(level[index].id) != connection.clientOf(topLevel.id);
        if (topLevel.clients.isEmpty() && isAnothers == (madeBy == MadeBy::Another)) {
            asked.append({index, connection.askProperty(level[index].id, connection[Atom::WmState],
                                                        sizeof(quint32))});
        }
    }
    for (const auto& [index, cookie] : std::as_const(asked)) {
        const auto state = readNumber(connection.property(cookie).get());
        if (state.value_or(kWithdrawn) != kWithdrawn)
            topLevels[level[index].topLevel].clients.append(level[index].id);
    }
}

/// The windows inside those of one level, where no program's window was found yet.
QList<Candidate> nextLevel(const X11Connection& connection, QList<Candidate> level,
                           const QList<X11TopLevel>& topLevels)
{
    level.removeIf(
        [&](const Candidate& one) { return !topLevels[one.topLevel].clients.isEmpty(); });
    for (Candidate& candidate : level) {
        if (!candidate.tree)
            candidate.tree = xcb_query_tree(connection, candidate.id);
    }
    QList<Candidate> next;
    for (const Candidate& candidate : std::as_const(level)) {
        const auto tree = connection.reply<xcb_query_tree_reply_t>(*candidate.tree);
        const xcb_window_t* const first = tree ? xcb_query_tree_children(tree.get()) : nullptr;
        for (int index = 0; tree && index < tree->children_len; ++index)
            next.append({candidate.topLevel, first[index], {}});
    }
    return next;
}

/// Where a frame holds several programs' windows, as tabs, those that show are the ones.
void keepShown(const X11Connection& connection, QList<xcb_window_t>& clients)
{
    QList<xcb_get_window_attributes_cookie_t> asked;
    for (const xcb_window_t client : std::as_const(clients))
        asked.append(xcb_get_window_attributes(connection, client));
    QList<xcb_window_t> shown;
    for (qsizetype index = 0; index < asked.size(); ++index) {
        const auto attributes = connection.reply<xcb_get_window_attributes_reply_t>(asked[index]);
        if (attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE)
            shown.append(clients[index]);
    }
    if (!shown.isEmpty())
        clients = shown;
}

void noteMaker(const X11Connection& connection, xcb_window_t window, X11TopLevel& topLevel)
{
    const quint32 maker = connection.clientOf(window);
    if (maker == 0)
        return;
    topLevel.makers.insert(maker);
    if (maker != connection.clientOf(topLevel.id))
        topLevel.guests.append(window);
}

/// Searches all of them a level at a time, so that a level costs a wait or two for the server
/// however many windows there are. A window manager's frames have the program's window at any
/// depth, among many of their own.
void findClients(const X11Connection& connection, QList<X11TopLevel>& topLevels)
{
    QList<Candidate> level;
    for (qsizetype index = 0; index < topLevels.size(); ++index) {
        // Nearly all have to be looked into: asked for at once, it saves a wait.
        const xcb_window_t id = topLevels[index].id;
        level.append({index, id, xcb_query_tree(connection, id)});
    }
    while (!level.isEmpty()) {
        for (const Candidate& candidate : std::as_const(level))
            noteMaker(connection, candidate.id, topLevels[candidate.topLevel]);
        // A frame is made of dozens of the window manager's windows and one that is not its.
        findClientsAmong(connection, level, MadeBy::Another, topLevels);
        findClientsAmong(connection, level, MadeBy::Same, topLevels);
        for (const Candidate& candidate : std::as_const(level)) {
            const bool isDone = !topLevels[candidate.topLevel].clients.isEmpty();
            if (isDone && candidate.tree)
                xcb_discard_reply(connection, candidate.tree->sequence);
        }
        level = nextLevel(connection, level, topLevels);
    }
    for (X11TopLevel& topLevel : topLevels) {
        if (topLevel.clients.size() > 1)
            keepShown(connection, topLevel.clients);
    }
}

void findFrames(const X11Connection& connection, const X11Desktop& desktop,
                QList<X11TopLevel>& topLevels)
{
    for (X11TopLevel& topLevel : topLevels) {
        topLevel.isFrame = !topLevel.clients.isEmpty() && !topLevel.clients.contains(topLevel.id) &&
                           desktop.windowManager == connection.clientOf(topLevel.id);
    }
}

/// A window of which it is asked what is inside.
struct Host {
    qsizetype topLevel;
    xcb_window_t id;
    xcb_query_tree_cookie_t tree;
};

/// What a program makes inside its own window tells nothing new.
void noteGuest(const X11Connection& connection, xcb_window_t host, xcb_window_t window,
               X11TopLevel& topLevel)
{
    if (connection.clientOf(window) != connection.clientOf(host))
        noteMaker(connection, window, topLevel);
}

/// Searches below the programs' own windows for what others draw there: a terminal in a tab, a
/// plug in a panel. A level at a time, as above.
void findGuests(const X11Connection& connection, QList<X11TopLevel>& topLevels)
{
    // More are not looked through: who makes thousands of windows has them of its own.
    constexpr qsizetype kMaxHosts = 4096;
    QList<Host> level;
    for (qsizetype index = 0; index < topLevels.size(); ++index) {
        const X11TopLevel& topLevel = topLevels[index];
        // Where no program's window was found, the search for one went to the bottom.
        if (topLevel.clients.isEmpty())
            continue;
        QSet<xcb_window_t> hosts(topLevel.guests.cbegin(), topLevel.guests.cend());
        hosts.unite({topLevel.clients.cbegin(), topLevel.clients.cend()});
        // What a program has beside another's window may hold a third one's.
        if (!topLevel.isFrame)
            hosts = {topLevel.id};
        for (const xcb_window_t host : std::as_const(hosts))
            level.append({index, host, xcb_query_tree(connection, host)});
    }
    qsizetype looked = 0;
    while (!level.isEmpty()) {
        QList<Host> inside;
        for (const Host& host : std::as_const(level)) {
            const auto tree = connection.reply<xcb_query_tree_reply_t>(host.tree);
            if (!tree)
                continue;
            const xcb_window_t* const first = xcb_query_tree_children(tree.get());
            for (int child = 0; child < tree->children_len; ++child) {
                const xcb_window_t window = first[child];
                noteGuest(connection, host.id, window, topLevels[host.topLevel]);
                if (++looked <= kMaxHosts)
                    inside.append({host.topLevel, window, xcb_query_tree(connection, window)});
            }
        }
        level = inside;
    }
}

} // namespace

QList<X11TopLevel> readTopLevels(const X11Connection& connection, const X11Desktop& desktop,
                                 X11Scope scope)
{
    QList<X11TopLevel> topLevels = readShown(connection, desktop, scope);
    findClients(connection, topLevels);
    findFrames(connection, desktop, topLevels);
    findGuests(connection, topLevels);
    topLevels.removeIf([](const X11TopLevel& window) {
        // What is not mapped is of interest only where a window manager has put it away. What the
        // server made holds nothing but what others drew, such as a compositor's whole screen.
        return (!window.isViewable && window.clients.isEmpty()) || window.makers.isEmpty();
    });
    return topLevels;
}

} // namespace mossbank
