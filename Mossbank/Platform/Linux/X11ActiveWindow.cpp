// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/X11ActiveWindow.h"

#include "Mossbank/Platform/Linux/X11Properties.h"
#include "MossbankCore/Support/Failure.h"

#include <QSocketNotifier>

namespace mossbank {

namespace {

constexpr int kBetweenAttempts = 1000;

/// What an event is, whether the server or another program sent it.
int kindOf(const xcb_generic_event_t& event)
{
    constexpr quint8 kSentByProgram = 0x80;
    return event.response_type & ~kSentByProgram;
}

} // namespace

xcb_window_t activeWindowOf(const X11Connection& connection)
{
    const auto asked = connection.askProperty(connection.root(), connection[Atom::NetActiveWindow],
                                              sizeof(quint32));
    // Some window managers have a second item there, which is not the window.
    return readNumber(connection.property(asked).get()).value_or(XCB_NONE);
}

bool isOfActiveWindow(const xcb_generic_event_t& event, const X11Connection& connection)
{
    return kindOf(event) == XCB_PROPERTY_NOTIFY &&
           reinterpret_cast<const xcb_property_notify_event_t&>(event).atom ==
               connection[Atom::NetActiveWindow];
}

X11ActiveWindow::X11ActiveWindow()
{
    m_again.setInterval(kBetweenAttempts);
    connect(&m_again, &QTimer::timeout, this, &X11ActiveWindow::connectToServer);
    connectToServer();
}

X11ActiveWindow::~X11ActiveWindow() = default;

void X11ActiveWindow::connectToServer()
{
    try {
        m_connection = std::make_unique<X11Connection>(X11Connection::kShortPatience);
    } catch (const Failure&) {
        m_again.start();
        return;
    }
    m_again.stop();
    const xcb_window_t root = m_connection->root();
    const quint32 events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(*m_connection, root, XCB_CW_EVENT_MASK, &events);
    xcb_flush(*m_connection);
    m_notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(*m_connection),
                                                   QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &X11ActiveWindow::readEvents);
    Q_EMIT changed();
    Q_EMIT overlaysChanged();
}

void X11ActiveWindow::loseServer()
{
    m_notifier.reset();
    m_connection.reset();
    m_again.start();
    Q_EMIT changed();
}

std::optional<ActiveWindow> X11ActiveWindow::read()
{
    if (!m_connection)
        return {};
    const X11Connection& connection = *m_connection;
    connection.forgetSilence();
    ActiveWindow window;
    window.id = activeWindowOf(connection);
    if (window.id != XCB_NONE) {
        const auto title =
            connection.askProperty(window.id, connection[Atom::NetWmName], kMaxTitleBytes);
        window.owner = readOwner(connection, window.id);
        window.title = readText(connection, connection.property(title).get());
    }
    // An event that came in with the answers wakes no notifier any more.
    QTimer::singleShot(0, this, &X11ActiveWindow::readEvents);
    if (connection.isSilent() || connection.isBroken())
        return {};
    return window;
}

std::optional<QList<X11Overlay>> X11ActiveWindow::overlays()
{
    if (!m_connection)
        return {};
    const X11Connection& connection = *m_connection;
    connection.forgetSilence();
    QList<X11Overlay> overlays;
    try {
        overlays = readOverlays(connection);
    } catch (const Failure&) {
        return {};
    }
    QTimer::singleShot(0, this, &X11ActiveWindow::readEvents);
    // One that did not answer may be a locker; one that has gone answers that it has.
    if (connection.isSilent() || connection.isBroken())
        return {};
    return overlays;
}

void X11ActiveWindow::readEvents()
{
    if (!m_connection)
        return;
    bool isOther = false;
    bool hasOverlays = false;
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(*m_connection)}) {
        isOther |= isOfActiveWindow(*event, *m_connection);
        switch (kindOf(*event)) {
        case XCB_MAP_NOTIFY:
            hasOverlays |=
                reinterpret_cast<const xcb_map_notify_event_t*>(event.get())->override_redirect;
            break;
        case XCB_UNMAP_NOTIFY:
        case XCB_DESTROY_NOTIFY:
            hasOverlays = true;
            break;
        default:
            break;
        }
    }
    if (m_connection->isBroken()) {
        loseServer();
        return;
    }
    if (isOther)
        Q_EMIT changed();
    if (hasOverlays)
        Q_EMIT overlaysChanged();
}

} // namespace mossbank
