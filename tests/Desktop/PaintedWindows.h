// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArrayList>
#include <QJsonObject>
#include <QList>
#include <QRect>
#include <QRgb>
#include <QString>

#include <xcb/xcb.h>

namespace mossbank::test {

/// A window of one flat colour, painted by the server itself: it shows also while the program that
/// opened it stands still.
struct WindowSpec {
    QRect frame;
    QRgb colour = 0;
    /// Empty: the window has no class.
    QString windowClass = {};
    /// As programs with GTK say it. Empty: it says none.
    QString applicationID = {};
    QString title = {};
    /// "_NET_WM_WINDOW_TYPE_…"; empty: it has none.
    QString type = {};
    bool overridesRedirect = false;
    /// Nothing of it shows; it only hears the mouse and the keys.
    bool isForInputOnly = false;
    bool tellsProcess = false;
    /// Without one it keeps what lies where it opens.
    bool hasBackground = true;
    /// Whether `open` waits until it shows.
    bool isMapped = true;
    /// The window that it is put into, whoever has that. 0: it stands by itself.
    quint32 parent = 0;

    QJsonObject toJson() const;
    static WindowSpec fromJson(const QJsonObject& json);
};

/// Windows of this process, on a connection of their own.
class PaintedWindows {
public:
    PaintedWindows();
    ~PaintedWindows();
    Q_DISABLE_COPY_MOVE(PaintedWindows)

    /// Opens it and waits until it shows. 0 when it does not show within `patience` milliseconds.
    xcb_window_t open(const WindowSpec& spec, int patience = 5000);
    void close(xcb_window_t window);
    /// Whether a window manager has put it into a window of its own.
    bool isFramed(xcb_window_t window) const;
    xcb_window_t root() const { return m_screen ? m_screen->root : xcb_window_t{XCB_NONE}; }
    /// What window managers say of a window or of the root. `type`: XCB_ATOM_CARDINAL and the like.
    void setNumbers(xcb_window_t window, const QByteArray& property, xcb_atom_t type,
                    const QList<quint32>& numbers);
    void setAtoms(xcb_window_t window, const QByteArray& property, const QByteArrayList& names);
    /// Takes over what only one client of the server has at a time.
    void take(const QByteArray& selection, xcb_window_t window);
    /// Has the server end the connections of everybody but this one.
    void endEveryOtherClient();

private:
    void awaitServer();
    xcb_atom_t atom(const QByteArray& name);
    void setText(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                 const QByteArray& value);
    bool waitUntilShown(xcb_window_t window, int patience);

    xcb_connection_t* m_connection;
    xcb_screen_t* m_screen = nullptr;
};

} // namespace mossbank::test
