// SPDX-License-Identifier: Apache-2.0
#include "bench/BenchSession.h"

#include "MossbankCore/Support/Failure.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>

#include <sys/prctl.h>

#include <algorithm>
#include <csignal>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

constexpr int kPatience = 10'000;

/// Only what is put into its folder is started on demand: nobody's keyring is.
const QString kConfiguration = uR"(<busconfig>
  <type>session</type>
  <listen>unix:dir=%1</listen>
  <servicedir>%1/services</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)"_s;

const QString kService = u"org.a11y.Bus"_s;
const QString kServicePath = u"/org/a11y/bus"_s;
const QString kServiceFile = u"/usr/share/dbus-1/services/org.a11y.Bus.service"_s;

/// A connection of its own, which ends with it.
class Connection {
public:
    explicit Connection(const QString& address)
        : m_bus(QDBusConnection::connectToBus(address, address))
    {
    }
    ~Connection() { QDBusConnection::disconnectFromBus(m_bus.name()); }
    Q_DISABLE_COPY_MOVE(Connection)

    QDBusMessage call(const QString& interface, const QString& method,
                      const QVariantList& arguments) const
    {
        QDBusMessage message =
            QDBusMessage::createMethodCall(kService, kServicePath, interface, method);
        message.setArguments(arguments);
        const QDBusMessage reply = m_bus.call(message, QDBus::Block, kPatience);
        if (reply.type() != QDBusMessage::ReplyMessage)
            throw Failure(u"The accessibility bus cannot be had: "_s + reply.errorMessage());
        return reply;
    }

    /// Whether a process has a connection to this bus.
    bool has(qint64 process) const
    {
        QDBusConnectionInterface* const bus = m_bus.interface();
        const QStringList names = bus ? bus->registeredServiceNames().value() : QStringList();
        return std::ranges::any_of(names, [&](const QString& name) {
            const QDBusReply<uint> owner = bus->servicePid(name);
            return owner.isValid() && owner.value() == process;
        });
    }

private:
    QDBusConnection m_bus;
};

} // namespace

BenchSession::BenchSession()
{
    startBus();
    const Connection session(m_address);
    session.call(
        u"org.freedesktop.DBus.Properties"_s, u"Set"_s,
        {u"org.a11y.Status"_s, u"IsEnabled"_s, QVariant::fromValue(QDBusVariant(QVariant(true)))});
    m_accessibilityAddress =
        session.call(kService, u"GetAddress"_s, {}).arguments().value(0).toString();
}

BenchSession::~BenchSession()
{
    // What it has started ends when it does.
    m_bus.terminate();
    if (!m_bus.waitForFinished(kPatience)) {
        m_bus.kill();
        m_bus.waitForFinished(kPatience);
    }
}

void BenchSession::startBus()
{
    const QDir folder(m_folder.path());
    folder.mkpath(u"services"_s);
    folder.mkpath(u"run"_s);
    QFile::setPermissions(folder.filePath(u"run"_s),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    if (!QFile::copy(kServiceFile, folder.filePath(u"services/org.a11y.Bus.service"_s)))
        throw Failure(
            u"%1 is missing: install the Debian package at-spi2-core."_s.arg(kServiceFile));
    QFile configuration(folder.filePath(u"bus.conf"_s));
    if (!configuration.open(QIODevice::WriteOnly) ||
        configuration.write(kConfiguration.arg(folder.path()).toUtf8()) <= 0)
        throw FileError(configuration.errorString(), configuration.fileName());
    configuration.close();

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"HOME"_s, folder.path());
    environment.insert(u"XDG_RUNTIME_DIR"_s, folder.filePath(u"run"_s));
    // The service keeps the choice in the user's settings, and takes it back where it cannot.
    environment.insert(u"GSETTINGS_BACKEND"_s, u"memory"_s);
    environment.remove(u"DBUS_SESSION_BUS_ADDRESS"_s);
    m_bus.setProcessEnvironment(environment);
    m_bus.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    m_bus.start(u"dbus-daemon"_s, {u"--config-file"_s, configuration.fileName(), u"--nofork"_s,
                                   u"--print-address=1"_s});
    const QDeadlineTimer deadline(kPatience);
    while (!m_bus.canReadLine() && !deadline.hasExpired() &&
           m_bus.waitForReadyRead(static_cast<int>(deadline.remainingTime()))) {
    }
    m_address = QString::fromLocal8Bit(m_bus.readLine().trimmed());
    if (m_address.isEmpty())
        throw Failure(u"dbus-daemon does not start: "_s +
                      QString::fromLocal8Bit(m_bus.readAllStandardError()));
}

bool BenchSession::isOn(qint64 process) const
{
    return Connection(m_address).has(process) && Connection(m_accessibilityAddress).has(process);
}

} // namespace mossbank
