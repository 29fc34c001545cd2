// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/BusLink.h"

#include "Mossbank/Platform/Linux/BusConnection.h"

#include <QCoro/QCoroDBusPendingCall>
#include <QDBusError>
#include <QDBusPendingCall>
#include <QPointer>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

const QString kBus = u"org.freedesktop.DBus"_s;
const QString kBusPath = u"/org/freedesktop/DBus"_s;

/// Takes down whoever waits for an answer on a link that has gone, frame by frame.
struct LinkIsGone {};

// Made in functions of their own: the compiler of Debian 12 loses lists within a `co_await`.

BusCall helloCall()
{
    return {kBus, kBusPath, kBus, u"Hello"_s};
}

BusCall matchCall(const QString& rule)
{
    return {kBus, kBusPath, kBus, u"AddMatch"_s, {rule}};
}

QStringList argumentsOf(const BusSignals& wanted)
{
    return wanted.firstArgument.isEmpty() ? QStringList() : QStringList{wanted.firstArgument};
}

QString ruleOf(const BusSignals& wanted)
{
    QString rule =
        u"type='signal',interface='%1',member='%2'"_s.arg(wanted.interface, wanted.member);
    if (!wanted.service.isEmpty())
        rule += u",sender='%1'"_s.arg(wanted.service);
    if (!wanted.path.isEmpty())
        rule += u",path='%1'"_s.arg(wanted.path);
    if (!wanted.firstArgument.isEmpty())
        rule += u",arg0='%1'"_s.arg(wanted.firstArgument);
    return rule;
}

} // namespace

BusLink::~BusLink()
{
    close();
}

/// Qt waits for the bus to say hello when it connects to one, but not when it connects to any
/// other program. So the bus is spoken to as such, and what it wants to hear is said here.
QCoro::Task<bool> BusLink::open(QString address, int limit)
{
    close();
    m_name = freshBusName();
    m_connection = QDBusConnection::connectToPeer(address, m_name);
    if (!m_connection->isConnected()) {
        close();
        co_return false;
    }
    m_connection->connect({}, u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s,
                          u"Disconnected"_s, this, SLOT(noticeEnd()));
    const QString name = m_name;
    const QDBusMessage answer = co_await call(helloCall(), limit);
    if (name != m_name)
        co_return false;
    const bool isTaken = answer.type() == QDBusMessage::ReplyMessage;
    if (!isTaken)
        close();
    co_return isTaken;
}

void BusLink::close()
{
    if (!m_connection)
        return;
    m_connection.reset();
    QDBusConnection::disconnectFromPeer(m_name);
    m_name.clear();
}

QCoro::Task<QDBusMessage> BusLink::call(BusCall call, int limit)
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(call.service, call.path, call.interface, call.member);
    if (!m_connection)
        co_return message.createErrorReply(QDBusError::Disconnected, u"The bus has gone."_s);
    message.setArguments(call.arguments);
    const QDBusPendingCall pending = m_connection->asyncCall(message, limit);
    const QPointer<BusLink> link(this);
    const QDBusMessage answer = co_await pending;
    if (!link)
        throw LinkIsGone();
    co_return answer;
}

QCoro::Task<bool> BusLink::listen(BusSignals wanted, QObject* receiver, const char* slot, int limit)
{
    if (!m_connection)
        co_return false;
    // The sender is left to the bus, which knows by name whom it sends for.
    if (!m_connection->connect(QString(), wanted.path, wanted.interface, wanted.member,
                               argumentsOf(wanted), QString(), receiver, slot))
        co_return false;
    const QDBusMessage answer = co_await call(matchCall(ruleOf(wanted)), limit);
    co_return answer.type() == QDBusMessage::ReplyMessage;
}

bool BusLink::offer(const QString& path, QObject* object)
{
    return m_connection &&
           m_connection->registerObject(path, object, QDBusConnection::ExportAllSlots);
}

void BusLink::noticeEnd()
{
    if (!m_connection)
        return;
    close();
    Q_EMIT lost();
}

bool isSilence(const QDBusMessage& answer)
{
    if (answer.type() != QDBusMessage::ErrorMessage)
        return false;
    const auto kind = QDBusError(answer).type();
    return kind == QDBusError::NoReply || kind == QDBusError::Timeout ||
           kind == QDBusError::TimedOut;
}

} // namespace mossbank
