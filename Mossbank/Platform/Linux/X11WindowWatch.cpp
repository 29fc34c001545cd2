// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/X11WindowWatch.h"

#include "MossbankCore/Support/Failure.h"

#include <QSocketNotifier>

namespace mossbank {

namespace {

constexpr int kRetryDelay = 5000;

bool isOfWindows(const xcb_generic_event_t& event)
{
    constexpr quint8 kSentByClients = 0x80;
    switch (event.response_type & ~kSentByClients) {
    case XCB_MAP_NOTIFY:
    case XCB_UNMAP_NOTIFY:
    case XCB_DESTROY_NOTIFY:
    case XCB_CONFIGURE_NOTIFY:
    case XCB_REPARENT_NOTIFY:
        return true;
    default:
        return false;
    }
}

} // namespace

X11WindowWatch::X11WindowWatch(QObject* parent)
    : QObject(parent)
{
    m_telling.setSingleShot(true);
    m_telling.setInterval(kDelay);
    connect(&m_telling, &QTimer::timeout, this, &X11WindowWatch::changed);
    m_retry.setSingleShot(true);
    m_retry.setInterval(kRetryDelay);
    connect(&m_retry, &QTimer::timeout, this, &X11WindowWatch::connectToServer);
    connectToServer();
}

X11WindowWatch::~X11WindowWatch() = default;

void X11WindowWatch::connectToServer()
{
    m_notifier.reset();
    try {
        m_connection = std::make_unique<X11Connection>(X11Connection::kShortPatience);
    } catch (const Failure&) {
        m_retry.start();
        return;
    }
    const quint32 events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(*m_connection, m_connection->root(), XCB_CW_EVENT_MASK, &events);
    xcb_flush(*m_connection);
    m_notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(*m_connection),
                                                   QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &X11WindowWatch::readEvents);
}

void X11WindowWatch::readEvents()
{
    bool hasChanged = false;
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(*m_connection)})
        hasChanged |= isOfWindows(*event);
    if (hasChanged && !m_telling.isActive())
        m_telling.start();
    if (m_connection->isBroken()) {
        m_notifier->setEnabled(false);
        m_retry.start();
    }
}

} // namespace mossbank
