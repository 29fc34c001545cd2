// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/BusConnection.h"

#include <QDBusServiceWatcher>
#include <QObject>
#include <QVariantMap>

#include <optional>

namespace mossbank {

/// The login session that this program runs in, as logind tells it.
///
/// It is kept current by signals, so asking costs nothing. logind may come and go: what it said
/// last stands until it says otherwise.
///
/// Threading: the main thread. The constructor, and the return of logind, wait for a few answers,
/// each for a quarter of a second at most.
class LogindSession : public QObject {
    Q_OBJECT

public:
    explicit LogindSession(QObject* parent = nullptr);

    /// Whether logind is there and knows this session.
    bool isThere() const { return !m_path.isEmpty(); }
    /// Absent where nothing said so.
    std::optional<bool> isLocked() const { return m_isLocked; }
    /// Whether the session is the one in front. Absent where nothing said so.
    std::optional<bool> isActive() const { return m_isActive; }

Q_SIGNALS:
    void lockedChanged();
    void activeChanged();
    void goesToSleep();
    void woke();

private Q_SLOTS:
    void onPrepareForSleep(bool isBeginning);
    void onPropertiesChanged(const QString& interface, const QVariantMap& changed,
                             const QStringList& invalidated);

private:
    void find();
    void lose();
    QString sessionPath();
    QVariantMap properties();
    void take(const QVariantMap& properties);

    BusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    QString m_path;
    std::optional<bool> m_isLocked;
    std::optional<bool> m_isActive;
};

} // namespace mossbank
