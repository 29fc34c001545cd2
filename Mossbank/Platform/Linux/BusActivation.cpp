// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/BusActivation.h"

#include "Mossbank/Platform/Linux/AccessibilityBus.h"
#include "Mossbank/Platform/Linux/ActivationService.h"
#include "Mossbank/Platform/Linux/BusConnection.h"

#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QThread>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

/// Between two looks for one that has just been started.
constexpr unsigned long kBetweenLooks = 50;

const QString kBus = u"org.freedesktop.DBus"_s;
const QString kBusPath = u"/org/freedesktop/DBus"_s;

/// A connection to the bus whose every answer is waited for, all of them together no longer than
/// until the deadline. For a program that has nothing else to do yet.
class WaitingLink {
public:
    WaitingLink(const QString& address, QDeadlineTimer deadline)
        : m_name(freshBusName())
        , m_deadline(deadline)
        // Spoken to as to any program: Qt would wait for the hello of a bus as long as it takes.
        , m_connection(QDBusConnection::connectToPeer(address, m_name))
    {
        m_isOpen = m_connection.isConnected() && isReply(ask(kBus, kBusPath, kBus, u"Hello"_s));
    }
    ~WaitingLink() { QDBusConnection::disconnectFromPeer(m_name); }
    Q_DISABLE_COPY_MOVE(WaitingLink)

    bool isOpen() const { return m_isOpen; }

    QDBusMessage ask(const QString& service, const QString& path, const QString& interface,
                     const QString& member, const QVariantList& arguments = {})
    {
        QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, member);
        message.setArguments(arguments);
        message.setAutoStartService(false);
        const qint64 left = std::max<qint64>(m_deadline.remainingTime(), 1);
        return m_connection.call(message, QDBus::Block, static_cast<int>(left));
    }

    QVariant askBus(const QString& member, const QString& about)
    {
        const QDBusMessage answer = ask(kBus, kBusPath, kBus, member, {about});
        return isReply(answer) ? answer.arguments().value(0) : QVariant();
    }

    static bool isReply(const QDBusMessage& answer)
    {
        return answer.type() == QDBusMessage::ReplyMessage;
    }

private:
    QString m_name;
    QDeadlineTimer m_deadline;
    QDBusConnection m_connection;
    bool m_isOpen = false;
};

/// The one of this process among those that have the name or wait for it: with several libraries
/// several run. Empty when it is not there.
QString connectionOf(qint64 process, const QString& identity, WaitingLink& bus)
{
    const QStringList owners = bus.askBus(u"ListQueuedOwners"_s, identity).toStringList();
    for (const QString& owner : owners) {
        const QVariant its = bus.askBus(u"GetConnectionUnixProcessID"_s, owner);
        if (its.isValid() && its.toLongLong() == process)
            return owner;
    }
    return {};
}

} // namespace

BusActivation::BusActivation(QString identity, std::chrono::milliseconds patience)
    : m_identity(std::move(identity))
    , m_patience(patience)
    , m_service(std::make_shared<ActivationService>(m_identity))
{
    connect(m_service.get(), &ActivationService::activated, this, &BusActivation::activated);
    connect(m_service.get(), &ActivationService::actionRequested, this,
            &BusActivation::actionRequested);
}

BusActivation::~BusActivation()
{
    m_service->stop();
}

Availability BusActivation::availability() const
{
    const QString& why = m_service->whyUnreachable();
    return why.isEmpty() ? Availability() : Availability::missing(why);
}

void BusActivation::listen()
{
    m_service->start();
}

bool BusActivation::activateFirst(qint64 process)
{
    const QString address = sessionBusAddress();
    if (address.isEmpty())
        return false;
    const QDeadlineTimer deadline(m_patience);
    WaitingLink bus(address, deadline);
    while (bus.isOpen() && !deadline.hasExpired()) {
        const QString first = connectionOf(process, m_identity, bus);
        if (!first.isEmpty())
            return WaitingLink::isReply(bus.ask(first, applicationPath(m_identity),
                                                u"org.freedesktop.Application"_s, u"Activate"_s,
                                                {QVariantMap()}));
        QThread::msleep(kBetweenLooks);
    }
    return false;
}

} // namespace mossbank
