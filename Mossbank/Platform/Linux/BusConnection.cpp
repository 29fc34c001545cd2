// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/BusConnection.h"

#include <atomic>

namespace mossbank {

namespace {

/// By the address that the environment names now: asked for by its type, a bus is for ever the one
/// that was named when it was first asked for.
QDBusConnection connectTo(QDBusConnection::BusType bus, const QString& name)
{
    const QString address = qEnvironmentVariable(
        bus == QDBusConnection::SystemBus ? "DBUS_SYSTEM_BUS_ADDRESS" : "DBUS_SESSION_BUS_ADDRESS");
    return address.isEmpty() ? QDBusConnection::connectToBus(bus, name)
                             : QDBusConnection::connectToBus(address, name);
}

} // namespace

QString freshBusName()
{
    static std::atomic<int> count = 0;
    return QStringLiteral("mossbank-%1").arg(++count);
}

BusConnection::BusConnection(QDBusConnection::BusType bus)
    : m_name(freshBusName())
    , m_connection(connectTo(bus, m_name))
{
}

BusConnection::~BusConnection()
{
    QDBusConnection::disconnectFromBus(m_name);
}

} // namespace mossbank
