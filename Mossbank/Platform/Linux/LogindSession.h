// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/BusConnection.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusServiceWatcher>
#include <QList>
#include <QObject>
#include <QTimer>
#include <QVariantMap>

#include <optional>

namespace mossbank {

/// The login session that this program runs in, as logind tells it.
///
/// It is kept current by signals, so asking costs nothing. logind may come and go: what it said
/// last stands until it says otherwise, for as long as there is a bus to say it on. One that knows
/// the session and says of it neither of the two tells nothing, and is asked again.
///
/// Threading: the main thread. The constructor waits for the first answers, each for a quarter of a
/// second at most; nothing else waits.
class LogindSession : public QObject {
    Q_OBJECT

public:
    explicit LogindSession(QObject* parent = nullptr);

    /// Whether logind is there and tells whether this session is locked.
    bool tellsLock() const { return isFollowed() && m_isLocked.has_value(); }
    /// Whether it is there and tells whether this session is the one in front.
    bool tellsActive() const { return isFollowed() && m_isActive.has_value(); }
    /// Absent where nothing said so.
    std::optional<bool> isLocked() const { return known(m_isLocked); }
    /// Whether the session is the one in front. Absent where nothing said so.
    std::optional<bool> isActive() const { return known(m_isActive); }
    /// From when the machine is about to sleep until it has woken.
    bool isGoingToSleep() const { return m_isGoingToSleep && m_bus->isConnected(); }

Q_SIGNALS:
    void lockedChanged();
    void activeChanged();
    void sleepChanged();
    /// The machine is about to be switched off or started anew.
    void shutsDown();

private Q_SLOTS:
    void onPrepareForSleep(bool isBeginning);
    void onPrepareForShutdown(bool isBeginning);
    void onPropertiesChanged(const QString& interface, const QVariantMap& changed,
                             const QStringList& invalidated);

private:
    bool isFollowed() const { return m_bus->isConnected() && !m_path.isEmpty(); }
    std::optional<bool> known(const std::optional<bool>& value) const
    {
        return m_bus->isConnected() ? value : std::nullopt;
    }

    /// Asks for the session in every way there is, one after the other, until one answers.
    void find();
    void findNext();
    void tryAgainLater();
    void askWhetherGoingToSleep();
    QDBusPendingCall askPath();
    QDBusPendingCall askProperties(const QString& path);
    /// Where the session is, by an answer. Empty when that is none.
    QString pathIn(const QDBusPendingCall& answer);
    /// False when the answer is none, or says nothing of use.
    bool follow(const QString& path, const QDBusPendingCall& properties);
    void lose();
    /// Both are as told from now on; absent what was not told.
    void take(std::optional<bool> isLocked, std::optional<bool> isActive);

    BusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    /// The questions that have not been asked yet.
    QList<QDBusMessage> m_questions;
    /// After all were asked in vain.
    QTimer m_untilNextTry;
    bool m_isRunning = false;
    /// Whether one of the sessions asked for is there and says nothing of use.
    bool m_saysNothing = false;
    QString m_path;
    std::optional<bool> m_isLocked;
    std::optional<bool> m_isActive;
    bool m_isGoingToSleep = false;
};

} // namespace mossbank
