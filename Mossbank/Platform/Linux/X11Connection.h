// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

#include <xcb/xcb.h>
#include <xcb/xcbext.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <stop_token>

namespace mossbank {

/// The atoms that the adapters use, asked for once a connection.
enum class Atom : quint8 {
    GtkApplicationId,
    KdeNetWmDesktopFile,
    NetActiveWindow,
    NetClientList,
    NetCompositor,
    NetCurrentDesktop,
    NetSupportingWmCheck,
    NetSystemTray,
    NetWmDesktop,
    NetWmName,
    NetWmOpaqueRegion,
    NetWmPid,
    NetWmState,
    NetWmStateHidden,
    NetWmType,
    NetWmTypeCombo,
    NetWmTypeDesktop,
    NetWmTypeDialog,
    NetWmTypeDnd,
    NetWmTypeDock,
    NetWmTypeDropdownMenu,
    NetWmTypeMenu,
    NetWmTypeNormal,
    NetWmTypeNotification,
    NetWmTypePopupMenu,
    NetWmTypeSplash,
    NetWmTypeToolbar,
    NetWmTypeTooltip,
    NetWmTypeUtility,
    NetWmWindowOpacity,
    Utf8String,
    WmState,
    Count,
};

/// Frees what xcb hands out.
struct XcbFree {
    void operator()(void* memory) const { std::free(memory); }
};

/// An answer of the X server. Empty when the request failed, as it does for a window that has
/// gone meanwhile.
template <typename T>
using Reply = std::unique_ptr<T, XcbFree>;

/// A connection to the X server that DISPLAY names, and what that server can do.
///
/// Threading: one thread at a time, but for `interrupt`.
/// Errors: the constructor and `requireAlive` throw a Failure; a request that fails has an empty
/// reply.
class X11Connection {
public:
    /// A server that is merely busy, or held by a window being dragged, answers sooner; one that
    /// has stopped must be told of.
    static constexpr int kPatience = 30'000;
    /// Where somebody would notice the wait: more than half of a second is long, and a server that
    /// is merely busy is faster.
    static constexpr int kShortPatience = 500;

    /// `patience` bounds in milliseconds how long the opening and each reply are waited for.
    /// Asking `ending` to stop ends the opening at once.
    explicit X11Connection(int patience = kPatience, const std::stop_token& ending = {});
    ~X11Connection();
    Q_DISABLE_COPY_MOVE(X11Connection)

    operator xcb_connection_t*() const { return m_connection; }
    const xcb_screen_t& screen() const { return *m_screen; }
    xcb_window_t root() const { return m_screen->root; }
    xcb_atom_t operator[](Atom atom) const { return m_atoms[static_cast<std::size_t>(atom)]; }

    bool hasShm() const { return m_hasShm; }
    bool hasRandr() const { return m_hasRandr; }
    bool hasRes() const { return m_hasRes; }
    bool hasShape() const { return m_hasShape; }
    /// Regions, and who owns a selection.
    bool hasFixes() const { return m_hasFixes; }
    bool hasDamage() const { return m_hasDamage; }
    bool hasDpms() const { return m_hasDpms; }
    bool hasScreenSaver() const { return m_hasScreenSaver; }

    /// Which of the server's clients made `resource`. 0 is the server itself.
    quint32 clientOf(quint32 resource) const;

    /// The answer to the request that gave `cookie`.
    template <typename T, typename Cookie>
    Reply<T> reply(Cookie cookie) const
    {
        return Reply<T>(static_cast<T*>(wait(cookie.sequence)));
    }

    /// Asks for at most `maxBytes` of a property of any type.
    xcb_get_property_cookie_t askProperty(xcb_window_t window, xcb_atom_t property,
                                          quint32 maxBytes) const;
    Reply<xcb_get_property_reply_t> property(xcb_get_property_cookie_t cookie) const
    {
        return reply<xcb_get_property_reply_t>(cookie);
    }

    bool isBroken() const;
    /// Throws away the events that have come in. Notices a connection that has been ended.
    void dropEvents() const;
    /// Whether a reply has been waited for in vain since `forgetSilence`. From then on none is
    /// waited for: all further replies are empty, and say nothing of what was asked.
    bool isSilent() const { return m_isSilent; }
    void forgetSilence() const { m_isSilent = false; }
    /// Throws when the server has gone, has ended this connection or has been silent.
    void requireAlive() const;

    /// Ends the connection from any thread, so that a wait for a server that has stopped
    /// answering ends too.
    void interrupt() const;

private:
    void* wait(unsigned int sequence) const;
    void findAtoms();
    void findExtensions();

    QByteArray m_name;
    int m_patience;
    mutable bool m_isSilent = false;
    xcb_connection_t* m_connection = nullptr;
    int m_screenNumber = 0;
    const xcb_screen_t* m_screen = nullptr;
    std::array<xcb_atom_t, static_cast<std::size_t>(Atom::Count)> m_atoms = {};
    bool m_hasShm = false;
    bool m_hasRandr = false;
    bool m_hasRes = false;
    bool m_hasShape = false;
    bool m_hasFixes = false;
    bool m_hasDamage = false;
    bool m_hasDpms = false;
    bool m_hasScreenSaver = false;
};

/// Holds every other program's requests back while it lives, so that all that is asked meanwhile
/// is of one instant.
class ServerGrab {
public:
    explicit ServerGrab(const X11Connection& connection);
    ~ServerGrab();
    Q_DISABLE_COPY_MOVE(ServerGrab)

private:
    const X11Connection& m_connection;
};

} // namespace mossbank
