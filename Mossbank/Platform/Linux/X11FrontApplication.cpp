// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/X11FrontApplication.h"

#include "Mossbank/Platform/Linux/X11ActiveWindow.h"
#include "MossbankCore/Support/Failure.h"

#include <QSocketNotifier>
#include <QTimer>

#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

X11FrontApplication::X11FrontApplication(std::shared_ptr<ApplicationCatalog> catalog,
                                         OwnProgram own)
    : m_catalog(std::move(catalog))
    , m_own(std::move(own))
{
    connectToServer();
    m_lastTold = ask();
}

X11FrontApplication::~X11FrontApplication() = default;

void X11FrontApplication::connectToServer()
{
    auto fresh = std::make_unique<X11Connection>(X11Connection::kShortPatience);
    m_notifier.reset();
    m_connection = std::move(fresh);
    const quint32 events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(*m_connection, m_connection->root(), XCB_CW_EVENT_MASK, &events);
    m_notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(*m_connection),
                                                   QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &X11FrontApplication::readEvents);
}

Availability X11FrontApplication::availability() const
{
    try {
        m_connection->requireAlive();
    } catch (const Failure& failure) {
        return Availability::missing(failure.message());
    }
    return {};
}

std::optional<Application> X11FrontApplication::current()
{
    if (m_connection->isBroken())
        connectToServer();
    auto application = ask();
    if (m_connection->isBroken())
        m_connection->requireAlive();
    // An event that came in with the answer wakes no notifier any more.
    QTimer::singleShot(0, this, &X11FrontApplication::readEvents);
    return application;
}

std::optional<Application> X11FrontApplication::ask() const
{
    const X11Connection& connection = *m_connection;
    connection.forgetSilence();
    const xcb_window_t window = activeWindowOf(connection);
    if (window == XCB_NONE)
        return {};
    const auto attributes = connection.reply<xcb_get_window_attributes_reply_t>(
        xcb_get_window_attributes(connection, window));
    if (!attributes)
        return {};
    const X11Owner owner = readOwner(connection, window);
    // Half of what identifies an application may name another.
    if (connection.isSilent())
        return {};
    return applicationOf(owner, *m_catalog, m_own);
}

void X11FrontApplication::readEvents()
{
    bool hasChanged = false;
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(*m_connection)})
        hasChanged |= isOfActiveWindow(*event, *m_connection);
    if (m_connection->isBroken())
        m_notifier->setEnabled(false);
    else if (hasChanged)
        tellOfChange();
}

void X11FrontApplication::tellOfChange()
{
    // Not `current`, which throws: nobody is there to catch it.
    const auto now = ask();
    QTimer::singleShot(0, this, &X11FrontApplication::readEvents);
    if (!now || now == m_lastTold)
        return;
    m_lastTold = now;
    Q_EMIT activated(*now);
}

} // namespace mossbank
