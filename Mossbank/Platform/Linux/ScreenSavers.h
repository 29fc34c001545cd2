// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/BusConnection.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusServiceWatcher>
#include <QMap>
#include <QObject>
#include <QString>

namespace mossbank {

/// The screen savers of desktops, which lock the screen. A session has one of them, or none.
///
/// Kept current by signals, so asking costs nothing. One that ends while it covers the screen may
/// be on its way back, so what it said stands for some seconds more.
///
/// Threading: the main thread. The constructor waits for the first answers, a quarter of a second
/// at most; nothing else waits.
class ScreenSavers : public QObject {
    Q_OBJECT

public:
    explicit ScreenSavers(QObject* parent = nullptr);

    /// Whether there is one.
    bool isThere() const;
    /// Whether one covers the screen.
    bool isActive() const;

Q_SIGNALS:
    void activeChanged();

private Q_SLOTS:
    void onActiveChanged(bool isActive, const QDBusMessage& message);

private:
    struct State {
        bool isThere = false;
        bool isActive = false;
    };

    QDBusPendingCall ask(const QString& service);
    void hear(const QString& service, const QDBusPendingCall& answer);
    void appear(const QString& service);
    void disappear(const QString& service);
    void setActive(const QString& service, bool isActive);

    BusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    QMap<QString, State> m_states;
};

} // namespace mossbank
