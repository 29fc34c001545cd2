// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/Desktop/TestBus.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

#include <memory>

namespace mossbank::test {

/// A session bus of the tests' own with a real keyring on it, which goes with it.
class TestKeyring {
public:
    struct Options {
        /// Whether gnome-keyring runs on the bus.
        bool hasService = true;
        /// Whether there is a keyring for new items, unlocked.
        bool hasDefault = true;
    };

    TestKeyring()
        : TestKeyring(Options{})
    {
    }
    explicit TestKeyring(const Options& options);
    ~TestKeyring();
    Q_DISABLE_COPY_MOVE(TestKeyring)

    /// Why it could not be set up. Empty when all went well.
    const QString& problem() const { return m_problem; }
    QString address() const { return m_bus.address(); }

    /// The secrets of all items of the library's key; empty ones for those that are locked.
    QList<QByteArray> secrets() const { return secrets(QStringLiteral("library")); }
    QList<QByteArray> secrets(const QString& account) const;
    /// Adds an item beside those that are there, as any program can.
    bool put(const QByteArray& secret) const;
    /// What the one item is called.
    QString label() const;
    /// What it is found by.
    QMap<QString, QString> attributes() const;

    /// What unlocks it.
    static QString password() { return QStringLiteral("password of the tests"); }
    /// Whether some program on the bus has this name.
    bool hasOwner(const char* name) const;

    /// Locks the keyring, as the desktop does with the screen.
    bool lock() const;
    /// Has new items go into the keyring that lasts until logout.
    bool makeSessionTheDefault() const;

    /// Stops and goes on.
    void standStill();
    void goOn();
    void busStandsStill();
    void busGoesOn();
    /// Ends the keyring the hard way.
    void killService();

private:
    bool startService(const Options& options);

    QTemporaryDir m_home;
    TestBus m_bus{TestBus::Kind::Session};
    QProcess m_service;
    QString m_problem;
    struct Connection;
    std::unique_ptr<Connection> m_connection;
};

} // namespace mossbank::test
