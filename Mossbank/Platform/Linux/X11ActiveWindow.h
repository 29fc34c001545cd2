// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/X11Overlays.h"
#include "Mossbank/Platform/Linux/X11Owners.h"

#include <QObject>
#include <QTimer>

#include <memory>
#include <optional>

QT_FORWARD_DECLARE_CLASS(QSocketNotifier)

namespace mossbank {

/// The window that the window manager calls active, at one instant.
struct ActiveWindow {
    xcb_window_t id = XCB_NONE;
    X11Owner owner;
    QString title;

    friend bool operator==(const ActiveWindow&, const ActiveWindow&) = default;
};

/// The window that the window manager calls active. XCB_NONE when there is none, and when the
/// server does not tell.
xcb_window_t activeWindowOf(const X11Connection& connection);
/// Whether an event of the root window says that another has become so.
bool isOfActiveWindow(const xcb_generic_event_t& event, const X11Connection& connection);

/// Tells which window is active and when another becomes so. It has a connection of its own, so
/// that it can watch from a thread of its own.
///
/// Threading: one thread with an event loop.
/// Errors: while the server cannot be asked, nothing is known; it is looked for again meanwhile.
class X11ActiveWindow final : public QObject {
    Q_OBJECT

public:
    X11ActiveWindow();
    ~X11ActiveWindow() override;

    /// Absent when the server does not tell. Without an active window its id is XCB_NONE.
    std::optional<ActiveWindow> read();
    /// The windows that are on top without asking the window manager, as those of lockers are.
    /// Absent when the server does not tell.
    std::optional<QList<X11Overlay>> overlays();

Q_SIGNALS:
    /// Another window is active, or the server is not to be asked any more or is so again.
    void changed();
    /// A window that does not ask the window manager came or went.
    void overlaysChanged();

private:
    void connectToServer();
    void readEvents();
    void loseServer();

    std::unique_ptr<X11Connection> m_connection;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_again;
};

} // namespace mossbank
