// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/ActivationService.h"

#include "Mossbank/Platform/Linux/AccessibilityBus.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

constexpr int kLimit = 5000;
constexpr int kSoon = 500;
constexpr int kLongest = 30'000;
/// After a flood of calls.
constexpr int kRest = 5000;

QString because(const QString& why)
{
    return why + u" Starting Mossbank again cannot bring its window to the front."_s;
}

// Made in a function of its own: the compiler of Debian 12 loses lists within a `co_await`.
BusCall nameCall(const QString& name)
{
    const QString bus = u"org.freedesktop.DBus"_s;
    return {bus, u"/org/freedesktop/DBus"_s, bus, u"RequestName"_s, {name, quint32{0}}};
}

} // namespace

QString applicationPath(const QString& identity)
{
    QString path = u'/' + identity;
    return path.replace(u'.', u'/').replace(u'-', u'_');
}

ActivationService::ActivationService(QString identity)
    : m_identity(std::move(identity))
{
    m_again.setSingleShot(true);
    connect(&m_again, &QTimer::timeout, this, [this] { hold(); });
    connect(&m_bus, &BusLink::lost, this, [this] {
        m_reason = because(u"The session bus has gone."_s);
        tryAgainLater();
    });
    connect(&m_object, &ApplicationObject::activated, this, &ActivationService::activated);
    connect(&m_object, &ApplicationObject::actionRequested, this,
            &ActivationService::actionRequested);
    // Not within the call that is one too many.
    connect(&m_object, &ApplicationObject::flooded, this, &ActivationService::rest,
            Qt::QueuedConnection);
}

void ActivationService::start()
{
    hold();
}

void ActivationService::stop()
{
    m_isStopped = true;
    m_object.disconnect(this);
    m_again.stop();
    m_bus.close();
}

QCoro::Task<> ActivationService::hold()
{
    if (m_isAsking || m_isStopped)
        co_return;
    const auto self = shared_from_this();
    m_isAsking = true;
    const QString reason = co_await takeName();
    m_isAsking = false;
    if (m_isStopped)
        co_return;
    m_reason = reason.isEmpty() ? QString() : because(reason);
    if (reason.isEmpty()) {
        m_attempts = 0;
        m_object.recover();
        co_return;
    }
    m_bus.close();
    tryAgainLater();
}

/// Why the name is not given. Empty when it is.
QCoro::Task<QString> ActivationService::takeName()
{
    const QString address = sessionBusAddress();
    if (address.isEmpty())
        co_return u"There is no session bus."_s;
    const QString silence = u"The session bus does not answer."_s;
    if (!co_await m_bus.open(address, kLimit))
        co_return silence;
    // Before anybody can find it by its name.
    if (!m_bus.offer(applicationPath(m_identity), &m_object))
        co_return silence;
    const QDBusMessage answer = co_await m_bus.call(nameCall(m_identity), kLimit);
    const quint32 given = answer.arguments().value(0).toUInt();
    if (answer.type() == QDBusMessage::ReplyMessage &&
        (given == kNameIsOurs || given == kNameIsWaitedFor))
        co_return QString();
    co_return isSilence(answer) ? silence : u"The session bus does not let Mossbank be found."_s;
}

void ActivationService::tryAgainLater()
{
    if (m_isStopped || m_again.isActive())
        return;
    m_again.start(std::min(kSoon << std::min(m_attempts, 10), kLongest));
    ++m_attempts;
}

/// Not to be found for a while is what keeps callers from having the program do nothing else.
void ActivationService::rest()
{
    if (m_isStopped)
        return;
    m_bus.close();
    m_again.start(kRest);
}

} // namespace mossbank
