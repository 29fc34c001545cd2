// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDBusConnection>
#include <QString>

namespace mossbank {

/// A name for a connection to a bus that no other in this program has.
QString freshBusName();

/// A connection to a message bus that ends with its owner. Each has one of its own, so that what
/// one listens to ends with it.
class BusConnection {
public:
    explicit BusConnection(QDBusConnection::BusType bus);
    ~BusConnection();
    Q_DISABLE_COPY_MOVE(BusConnection)

    QDBusConnection* operator->() { return &m_connection; }
    const QDBusConnection* operator->() const { return &m_connection; }
    QDBusConnection& operator*() { return m_connection; }

private:
    QString m_name;
    QDBusConnection m_connection;
};

} // namespace mossbank
