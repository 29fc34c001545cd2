// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/Desktop/MockedSession.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace mossbank::test {

/// A PackageKit that does what the test says, by python3-dbusmock.
class MockedPackageKit {
public:
    explicit MockedPackageKit(TestBus& systemBus);

    QString problem() const { return m_service.problem(); }

    /// What a method does from now on: steps in JSON, as data/packagekit.py has them.
    bool behave(const QString& method, const QStringList& steps);

    /// All that was called, with what it was called with, in order: `RefreshCache[false]`.
    QStringList told();
    /// Where it is on the bus.
    QString owner();

    QProcess& process() { return m_service.process(); }

    static QString package(const QString& id);
    static QString error(int code, const QString& words);
    static QString finished(int exit = 1);

private:
    BusConnection m_connection;
    MockedService m_service;
};

} // namespace mossbank::test
