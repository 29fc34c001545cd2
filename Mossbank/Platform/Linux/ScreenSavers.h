// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/BusConnection.h"

#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QMap>
#include <QObject>
#include <QString>

namespace mossbank {

/// The screen savers of desktops, which lock the screen. A session has one of them, or none.
///
/// Kept current by signals, so asking costs nothing. One that has ended covers nothing any more.
///
/// Threading: the main thread. The constructor waits for a few answers, each for a quarter of a
/// second at most.
class ScreenSavers : public QObject {
    Q_OBJECT

public:
    explicit ScreenSavers(QObject* parent = nullptr);

    /// Whether there is one.
    bool isThere() const { return !m_isActive.isEmpty(); }
    /// Whether one covers the screen.
    bool isActive() const;

Q_SIGNALS:
    void activeChanged();

private Q_SLOTS:
    void onActiveChanged(bool isActive, const QDBusMessage& message);

private:
    bool hasOwner(const QString& service);
    void appear(const QString& service);
    void disappear(const QString& service);
    void setActive(const QString& service, bool isActive);

    BusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    /// Of each that is there.
    QMap<QString, bool> m_isActive;
};

} // namespace mossbank
