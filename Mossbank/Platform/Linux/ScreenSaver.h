// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/BusConnection.h"

#include <QDBusPendingCall>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QTimer>

#include <optional>

namespace mossbank {

/// The screen saver of one desktop, which locks the screen, or is not there.
///
/// Kept current by signals. Whoever has its name need not know what a screen saver knows, and may
/// be too busy to answer, so it is there only once it has said something, and is asked again until
/// then. One that ends while it covers the screen may be on its way back: what it said stands for
/// some seconds more, and then only if the new one says the same.
///
/// Threading: the main thread.
class ScreenSaver : public QObject {
    Q_OBJECT

public:
    /// By the name of its service, which is that of its interface, too. `bus` outlives it.
    ScreenSaver(BusConnection& bus, const QString& service, const QString& path,
                QObject* parent = nullptr);

    /// Asks for the first time. A service that does not answer at once is not waited for long.
    void ask();
    /// Waits for the answer to that.
    void hearAtOnce();

    bool isThere() const { return m_isThere; }
    /// Whether it covers the screen.
    bool isActive() const { return m_isActive; }

Q_SIGNALS:
    void activeChanged();

private Q_SLOTS:
    void onActiveChanged(bool isActive);

private:
    QDBusPendingCall call(int patience);
    void askAgain();
    void hear(const QDBusPendingCall& answer);
    void take(bool isActive);
    void setActive(bool isActive);
    void changeOwner(bool hasOwner);
    void restUntilNextTry();

    BusConnection& m_bus;
    QString m_service;
    QString m_path;
    QDBusServiceWatcher m_watcher;
    std::optional<QDBusPendingCall> m_first;
    QTimer m_untilNextTry;
    QTimer m_untilItIsBack;
    bool m_isThere = false;
    bool m_isActive = false;
    int m_tries = 0;
    /// Rises with each owner of the name: what the last one answers is of no use.
    int m_owner = 0;
};

} // namespace mossbank
