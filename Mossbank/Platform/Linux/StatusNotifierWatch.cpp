// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/StatusNotifierWatch.h"

#include "Mossbank/Platform/Linux/AccessibilityBus.h"

#include <QDBusVariant>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

constexpr int kLimit = 5000;
constexpr int kSoon = 500;
constexpr int kLongest = 30'000;

const QString kBus = u"org.freedesktop.DBus"_s;
const QString kWatcher = u"org.kde.StatusNotifierWatcher"_s;

// Made in functions of their own: the compiler of Debian 12 loses lists within a `co_await`.

BusCall ownerCall()
{
    return {kBus, u"/org/freedesktop/DBus"_s, kBus, u"NameHasOwner"_s, {kWatcher}};
}

BusCall hostCall()
{
    return {kWatcher,
            u"/StatusNotifierWatcher"_s,
            u"org.freedesktop.DBus.Properties"_s,
            u"Get"_s,
            {kWatcher, u"IsStatusNotifierHostRegistered"_s}};
}

BusSignals ownerSignals()
{
    return {.service = kBus,
            .interface = kBus,
            .member = u"NameOwnerChanged"_s,
            .firstArgument = kWatcher};
}

BusSignals watcherSignals(const QString& member)
{
    return {.service = kWatcher, .interface = kWatcher, .member = member};
}

bool isYes(const QDBusMessage& answer)
{
    if (answer.type() != QDBusMessage::ReplyMessage)
        return false;
    const QVariant value = answer.arguments().value(0);
    return value.metaType() == QMetaType::fromType<QDBusVariant>()
               ? value.value<QDBusVariant>().variant().toBool()
               : value.toBool();
}

} // namespace

StatusNotifierWatch::StatusNotifierWatch()
{
    m_again.setSingleShot(true);
    connect(&m_again, &QTimer::timeout, this, [this] { look(); });
    connect(&m_bus, &BusLink::lost, this, [this] {
        setHost(Host::None);
        lookAgainLater();
    });
}

void StatusNotifierWatch::start()
{
    look();
}

void StatusNotifierWatch::stop()
{
    m_isStopped = true;
    m_again.stop();
    m_bus.close();
}

void StatusNotifierWatch::hear(const QDBusMessage&)
{
    m_attempts = 0;
    look();
}

QCoro::Task<> StatusNotifierWatch::look()
{
    m_hasHeard = true;
    if (m_isLooking || m_isStopped)
        co_return;
    const auto self = shared_from_this();
    m_isLooking = true;
    while (std::exchange(m_hasHeard, false)) {
        const Host found = co_await ask();
        if (m_isStopped)
            co_return;
        setHost(found);
    }
    m_isLooking = false;
    if (m_host == Host::Unknown || !m_bus.isOpen())
        lookAgainLater();
    else
        m_attempts = 0;
}

QCoro::Task<StatusNotifierWatch::Host> StatusNotifierWatch::ask()
{
    const bool isConnected = co_await connectToBus();
    if (!isConnected)
        co_return Host::None;
    const QDBusMessage owner = co_await m_bus.call(ownerCall(), kLimit);
    if (!isYes(owner))
        co_return Host::None;
    const QDBusMessage host = co_await m_bus.call(hostCall(), kLimit);
    // Whoever has an icon made asks the watcher as well, and waits for it.
    if (isSilence(host))
        co_return Host::Unknown;
    co_return isYes(host) ? Host::There : Host::None;
}

/// What changes from then on is told.
QCoro::Task<bool> StatusNotifierWatch::connectToBus()
{
    if (m_bus.isOpen())
        co_return true;
    const QString address = sessionBusAddress();
    if (address.isEmpty())
        co_return false;
    const bool isOpen = co_await m_bus.open(address, kLimit);
    if (!isOpen)
        co_return false;
    const QList<BusSignals> wanted = {ownerSignals(),
                                      watcherSignals(u"StatusNotifierHostRegistered"_s),
                                      watcherSignals(u"StatusNotifierHostUnregistered"_s)};
    for (const BusSignals& one : wanted) {
        const bool isHeard = co_await m_bus.listen(one, this, SLOT(hear(QDBusMessage)), kLimit);
        if (!isHeard) {
            m_bus.close();
            co_return false;
        }
    }
    co_return true;
}

void StatusNotifierWatch::lookAgainLater()
{
    if (m_isStopped || m_again.isActive())
        return;
    m_again.start(std::min(kSoon << std::min(m_attempts, 10), kLongest));
    ++m_attempts;
}

void StatusNotifierWatch::setHost(Host host)
{
    if (std::exchange(m_host, host) != host)
        Q_EMIT changed();
}

} // namespace mossbank
