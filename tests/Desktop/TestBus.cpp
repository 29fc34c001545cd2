// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/TestBus.h"

#include "tests/Desktop/VirtualDesktop.h"

#include <QDeadlineTimer>
#include <QFile>

#include <sys/prctl.h>

#include <csignal>

using namespace Qt::StringLiterals;

namespace mossbank::test {

namespace {

constexpr int kPatience = 10'000;

const QString kConfiguration = uR"(<busconfig>
  <type>%1</type>
  <listen>unix:dir=%2</listen>
  %3
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)"_s;

} // namespace

TestBus::TestBus(Kind kind, const QString& services)
    : m_variable(kind == Kind::System ? "DBUS_SYSTEM_BUS_ADDRESS" : "DBUS_SESSION_BUS_ADDRESS")
    , m_previousAddress(qgetenv(m_variable.constData()))
{
    if (startBus(kind, services))
        qputenv(m_variable.constData(), m_address.toLocal8Bit());
}

TestBus::~TestBus()
{
    for (const auto& program : m_programs)
        end(*program);
    end(m_bus);
    if (m_previousAddress.isEmpty())
        qunsetenv(m_variable.constData());
    else
        qputenv(m_variable.constData(), m_previousAddress);
}

bool TestBus::startBus(Kind kind, const QString& services)
{
    m_problem = whyMissing(u"dbus-daemon"_s, u"dbus-daemon"_s);
    if (!m_problem.isEmpty())
        return false;
    QFile configuration(m_folder.filePath(u"bus.conf"_s));
    const QString type = kind == Kind::System ? u"system"_s : u"session"_s;
    const QString started =
        services.isEmpty() ? QString() : u"<servicedir>%1</servicedir>"_s.arg(services);
    if (!configuration.open(QIODevice::WriteOnly) ||
        configuration.write(kConfiguration.arg(type, m_folder.path(), started).toUtf8()) <= 0)
        qFatal("cannot write %s", qPrintable(configuration.fileName()));
    configuration.close();
    endWithTest(m_bus);
    m_bus.start(u"dbus-daemon"_s, {u"--config-file"_s, configuration.fileName(), u"--nofork"_s,
                                   u"--print-address=1"_s});
    const QDeadlineTimer deadline(kPatience);
    while (!m_bus.canReadLine() && !deadline.hasExpired() &&
           m_bus.waitForReadyRead(static_cast<int>(deadline.remainingTime()))) {
    }
    m_address = QString::fromLocal8Bit(m_bus.readLine().trimmed());
    if (m_address.isEmpty())
        m_problem =
            u"dbus-daemon did not start: "_s + QString::fromLocal8Bit(m_bus.readAllStandardError());
    return m_problem.isEmpty();
}

QProcess& TestBus::start(const QString& program, const QStringList& arguments)
{
    QProcess& process = *m_programs.emplace_back(std::make_unique<QProcess>());
    endWithTest(process);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    process.waitForStarted(kPatience);
    return process;
}

void TestBus::end(QProcess& process)
{
    if (process.state() == QProcess::NotRunning)
        return;
    // It may stand still.
    process.kill();
    process.waitForFinished(kPatience);
}

void endWithTest(QProcess& process)
{
    process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
}

} // namespace mossbank::test
