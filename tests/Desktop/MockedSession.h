// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/BusConnection.h"
#include "tests/Desktop/TestBus.h"

#include <QString>
#include <QVariantList>

#include <memory>

namespace mossbank::test {

/// A service that stands in for one of the machine's, by python3-dbusmock.
class MockedService {
public:
    /// `arguments` are dbusmock's.
    MockedService(TestBus& bus, QDBusConnection::BusType type, const QString& service,
                  const QString& path, const QStringList& arguments);
    ~MockedService();
    Q_DISABLE_COPY_MOVE(MockedService)

    /// Why it is not there. Empty when all went well.
    const QString& problem() const { return m_problem; }

    /// Calls a method and waits for its end. False when it failed.
    bool call(const QString& path, const QString& interface, const QString& method,
              const QVariantList& arguments);
    /// The same of what dbusmock itself offers.
    bool mock(const QString& path, const QString& method, const QVariantList& arguments);

    QProcess& process() { return m_process; }

private:
    bool waitUntilThere();

    BusConnection m_connection;
    QString m_service;
    QString m_path;
    QProcess& m_process;
    QString m_problem;
};

/// A logind that knows the session of this process.
class MockedLogind {
public:
    /// `parameters` are those of dbusmock's logind, in JSON.
    explicit MockedLogind(TestBus& systemBus, const QString& parameters = {});
    ~MockedLogind();
    Q_DISABLE_COPY_MOVE(MockedLogind)

    QString problem() const { return m_service.problem(); }

    /// From now on the session is neither that of any process nor known by a name, as for what the
    /// desktop starts as a service of the user's: only "auto" leads to it.
    bool knowItAsTheUsersOnly();
    /// From now on this object is the session, whether there is such a one or not.
    bool moveTo(const QString& path);
    /// Gives the session properties that it had not, which is not told of.
    bool know(const QVariantMap& properties);
    bool setLocked(bool isLocked);
    bool setActive(bool isActive);
    bool sleep(bool isBeginning);
    /// What it answers from now on when it is asked whether the machine is about to sleep.
    bool knowOfSleep(bool isBeginning);
    /// Says something of the session, of whatever type.
    bool tell(const QString& property, const QVariant& value);
    /// Says of the session only that something is no longer what it was.
    bool invalidate(const QString& property);
    /// The manager tells something, of whatever type.
    bool emitSignal(const QString& name, const QString& signature, const QVariant& value);

    QProcess& process() { return m_service.process(); }

    /// An object of it that knows nothing of any session.
    static QString managerPath();

private:
    bool answer(const QString& method, const QString& argument, const QString& code);

    MockedService m_service;
    QString m_session;
};

/// The screen saver of GNOME.
class MockedScreenSaver {
public:
    explicit MockedScreenSaver(TestBus& sessionBus);

    QString problem() const { return m_service.problem(); }
    bool setActive(bool isActive);
    QProcess& process() { return m_service.process(); }

private:
    MockedService m_service;
};

} // namespace mossbank::test
