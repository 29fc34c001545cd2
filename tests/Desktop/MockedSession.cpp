// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/MockedSession.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QThread>

using namespace Qt::StringLiterals;

namespace mossbank::test {

namespace {

constexpr int kPatience = 10'000;

/// Debian's own, which knows Debian's modules, whatever else is called by that name.
const QString kPython = u"/usr/bin/python3"_s;
const QString kMock = u"org.freedesktop.DBus.Mock"_s;

const QString kLogind = u"org.freedesktop.login1"_s;
const QString kLogindPath = u"/org/freedesktop/login1"_s;
const QString kManager = u"org.freedesktop.login1.Manager"_s;
const QString kSession = u"org.freedesktop.login1.Session"_s;
const QString kSessionPath = u"/org/freedesktop/login1/session/c1"_s;

const QString kScreenSaver = u"org.gnome.ScreenSaver"_s;
const QString kScreenSaverPath = u"/org/gnome/ScreenSaver"_s;

} // namespace

MockedService::MockedService(TestBus& bus, QDBusConnection::BusType type, const QString& service,
                             const QString& path, const QStringList& arguments)
    : m_connection(type)
    , m_service(service)
    , m_path(path)
    , m_process(bus.start(kPython, QStringList{u"-m"_s, u"dbusmock"_s} + arguments))
{
    m_problem = bus.problem();
    if (m_problem.isEmpty() && !waitUntilThere())
        m_problem = u"dbusmock did not start (package python3-dbusmock): "_s +
                    QString::fromLocal8Bit(m_process.readAll());
}

MockedService::~MockedService()
{
    TestBus::end(m_process);
}

bool MockedService::waitUntilThere()
{
    const QDeadlineTimer deadline(kPatience);
    while (!deadline.hasExpired() && m_process.state() != QProcess::NotRunning) {
        if (call(m_path, u"org.freedesktop.DBus.Peer"_s, u"Ping"_s, {}))
            return true;
        m_process.waitForFinished(20);
    }
    return false;
}

bool MockedService::call(const QString& path, const QString& interface, const QString& method,
                         const QVariantList& arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(m_service, path, interface, method);
    message.setArguments(arguments);
    return m_connection->call(message, QDBus::Block, kPatience).type() ==
           QDBusMessage::ReplyMessage;
}

bool MockedService::mock(const QString& path, const QString& method, const QVariantList& arguments)
{
    return call(path, kMock, method, arguments);
}

MockedLogind::MockedLogind(TestBus& systemBus, const QString& parameters)
    : m_service(
          systemBus, QDBusConnection::SystemBus, kLogind, kLogindPath,
          QStringList{u"--system"_s, u"--template"_s, u"logind"_s} +
              (parameters.isEmpty() ? QStringList() : QStringList{u"--parameters"_s, parameters}))
    , m_session(kSessionPath)
{
    m_service.mock(kLogindPath, u"AddSession"_s,
                   {u"c1"_s, u"seat0"_s, quint32{1000}, u"somebody"_s, true});
    // The template lacks it.
    answer(u"GetSessionByPID"_s, u"u"_s, u"ret = '%1'"_s.arg(m_session));
}

MockedLogind::~MockedLogind() = default;

bool MockedLogind::knowItAsTheUsersOnly()
{
    const QString refusal = u"raise dbus.exceptions.DBusException('none', "
                            u"name='org.freedesktop.login1.NoSuchSession')"_s;
    const QString orRefusal =
        u"if args[0] != 'auto':\n  %1\nret = '%2'"_s.arg(refusal, kSessionPath);
    return answer(u"GetSessionByPID"_s, u"u"_s, refusal) &&
           answer(u"GetSession"_s, u"s"_s, orRefusal);
}

bool MockedLogind::moveTo(const QString& path)
{
    m_session = path;
    const QString code = u"ret = '%1'"_s.arg(path);
    return answer(u"GetSessionByPID"_s, u"u"_s, code) && answer(u"GetSession"_s, u"s"_s, code);
}

bool MockedLogind::know(const QVariantMap& properties)
{
    return m_service.mock(m_session, u"AddProperties"_s, {kSession, properties});
}

QString MockedLogind::managerPath()
{
    return kLogindPath;
}

/// `code` is Python, and gives the path of a session.
bool MockedLogind::answer(const QString& method, const QString& argument, const QString& code)
{
    return m_service.mock(kLogindPath, u"AddMethod"_s, {kManager, method, argument, u"o"_s, code});
}

bool MockedLogind::setLocked(bool isLocked)
{
    return tell(u"LockedHint"_s, isLocked);
}

bool MockedLogind::setActive(bool isActive)
{
    return tell(u"Active"_s, isActive);
}

bool MockedLogind::tell(const QString& property, const QVariant& value)
{
    return m_service.mock(m_session, u"UpdateProperties"_s,
                          {kSession, QVariantMap{{property, value}}});
}

bool MockedLogind::sleep(bool isBeginning)
{
    return emitSignal(u"PrepareForSleep"_s, u"b"_s, isBeginning);
}

bool MockedLogind::knowOfSleep(bool isBeginning)
{
    return m_service.mock(kLogindPath, u"UpdateProperties"_s,
                          {kManager, QVariantMap{{u"PreparingForSleep"_s, isBeginning}}});
}

bool MockedLogind::invalidate(const QString& property)
{
    const auto argument = [](const QVariant& value) {
        return QVariant::fromValue(QDBusVariant(value));
    };
    return m_service.mock(m_session, u"EmitSignal"_s,
                          {u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s,
                           u"sa{sv}as"_s,
                           QVariantList{argument(kSession), argument(QVariantMap()),
                                        argument(QStringList{property})}});
}

bool MockedLogind::emitSignal(const QString& name, const QString& signature, const QVariant& value)
{
    return m_service.mock(
        kLogindPath, u"EmitSignal"_s,
        {kManager, name, signature, QVariantList{QVariant::fromValue(QDBusVariant(value))}});
}

MockedScreenSaver::MockedScreenSaver(TestBus& sessionBus)
    : m_service(sessionBus, QDBusConnection::SessionBus, kScreenSaver, kScreenSaverPath,
                {u"--session"_s, u"--template"_s, u"gnome_screensaver"_s})
{
}

bool MockedScreenSaver::setActive(bool isActive)
{
    return m_service.call(kScreenSaverPath, kScreenSaver, u"SetActive"_s, {isActive});
}

} // namespace mossbank::test
