// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>
#include <vector>

namespace mossbank::test {

/// A message bus of the tests' own. While it lives the environment names it in place of the
/// machine's, and nothing of the user's is touched. No service is started on demand but for those
/// of the test's own: who is to be there is started by the test, and ended with the bus.
class TestBus {
public:
    enum class Kind { Session, System };

    /// `services`: a folder with the files of services that the bus starts when they are asked for.
    explicit TestBus(Kind kind, const QString& services = {});
    ~TestBus();
    Q_DISABLE_COPY_MOVE(TestBus)

    /// Why it could not be set up. Empty when all went well.
    const QString& problem() const { return m_problem; }
    const QString& address() const { return m_address; }

    /// Starts a program that ends with the bus.
    QProcess& start(const QString& program, const QStringList& arguments);
    /// Ends one of these, the hard way.
    static void end(QProcess& process);

    /// The process of the bus itself.
    QProcess& process() { return m_bus; }

private:
    bool startBus(Kind kind, const QString& services);

    QByteArray m_variable;
    QByteArray m_previousAddress;
    QTemporaryDir m_folder;
    QString m_address;
    QString m_problem;
    QProcess m_bus;
    std::vector<std::unique_ptr<QProcess>> m_programs;
};

/// Has the process end with the test, also when that one crashes.
void endWithTest(QProcess& process);

} // namespace mossbank::test
