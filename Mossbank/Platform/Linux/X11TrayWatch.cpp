// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/X11TrayWatch.h"

#include "MossbankCore/Support/Failure.h"

#include <QSocketNotifier>

#include <xcb/xfixes.h>

#include <algorithm>
#include <utility>

namespace mossbank {

namespace {

constexpr int kFirstDelay = 5000;
constexpr int kLongestDelay = 320'000;
constexpr quint32 kChanges = XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                             XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                             XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE;

/// Null for any other.
const xcb_xfixes_selection_notify_event_t* changeOf(const xcb_generic_event_t& event,
                                                    const X11Connection& connection)
{
    constexpr quint8 kSentByClients = 0x80;
    const quint8 kind = xcb_get_extension_data(connection, &xcb_xfixes_id)->first_event +
                        XCB_XFIXES_SELECTION_NOTIFY;
    // Another program might claim anything.
    if ((event.response_type & kSentByClients) != 0 || event.response_type != kind)
        return nullptr;
    return reinterpret_cast<const xcb_xfixes_selection_notify_event_t*>(&event);
}

} // namespace

X11TrayWatch::X11TrayWatch(QObject* parent)
    : QObject(parent)
{
    m_retry.setSingleShot(true);
    m_retry.setInterval(kFirstDelay);
    connect(&m_retry, &QTimer::timeout, this, &X11TrayWatch::connectToServer);
    connectToServer();
}

X11TrayWatch::~X11TrayWatch() = default;

void X11TrayWatch::connectToServer()
{
    m_notifier.reset();
    try {
        m_connection = std::make_unique<X11Connection>(X11Connection::kShortPatience);
    } catch (const Failure&) {
        m_retry.start();
        // Where there is no such server it need not be looked for all day.
        m_retry.setInterval(std::min(2 * m_retry.interval(), kLongestDelay));
        return;
    }
    m_retry.setInterval(kFirstDelay);
    if (!m_connection->hasFixes())
        return;
    xcb_xfixes_select_selection_input(*m_connection, m_connection->root(),
                                      (*m_connection)[Atom::NetSystemTray], kChanges);
    m_notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(*m_connection),
                                                   QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &X11TrayWatch::readEvents);
    // From here on each change is told of.
    setThere(isOwned());
    // An event that came in with the answer wakes no notifier any more.
    QTimer::singleShot(0, this, &X11TrayWatch::readEvents);
}

bool X11TrayWatch::isOwned() const
{
    const auto owner = m_connection->reply<xcb_get_selection_owner_reply_t>(
        xcb_get_selection_owner(*m_connection, (*m_connection)[Atom::NetSystemTray]));
    return owner && owner->owner != XCB_NONE;
}

void X11TrayWatch::readEvents()
{
    bool isThere = m_isThere;
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(*m_connection)}) {
        if (const auto* const change = changeOf(*event, *m_connection))
            isThere = change->subtype == XCB_XFIXES_SELECTION_EVENT_SET_SELECTION_OWNER &&
                      change->owner != XCB_NONE;
    }
    if (m_connection->isBroken()) {
        m_notifier->setEnabled(false);
        m_retry.start();
        isThere = false;
    }
    setThere(isThere);
}

void X11TrayWatch::setThere(bool isThere)
{
    if (std::exchange(m_isThere, isThere) != isThere)
        Q_EMIT changed();
}

} // namespace mossbank
