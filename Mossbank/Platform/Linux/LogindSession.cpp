// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/LogindSession.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusReply>

namespace mossbank {

using namespace Qt::StringLiterals;

namespace {

const QString kService = u"org.freedesktop.login1"_s;
const QString kManagerPath = u"/org/freedesktop/login1"_s;
const QString kManager = u"org.freedesktop.login1.Manager"_s;
const QString kSession = u"org.freedesktop.login1.Session"_s;
const QString kProperties = u"org.freedesktop.DBus.Properties"_s;
const QString kPropertiesChanged = u"PropertiesChanged"_s;

constexpr int kPatience = 250;

QDBusMessage ask(const QString& path, const QString& interface, const QString& method,
                 const QVariantList& arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(kService, path, interface, method);
    message.setArguments(arguments);
    return message;
}

} // namespace

LogindSession::LogindSession(QObject* parent)
    : QObject(parent)
    , m_bus(QDBusConnection::SystemBus)
{
    if (!m_bus->isConnected())
        return;
    m_watcher.setConnection(*m_bus);
    m_watcher.addWatchedService(kService);
    connect(&m_watcher, &QDBusServiceWatcher::serviceRegistered, this, &LogindSession::find);
    connect(&m_watcher, &QDBusServiceWatcher::serviceUnregistered, this, &LogindSession::lose);
    m_bus->connect(kService, kManagerPath, kManager, u"PrepareForSleep"_s, this,
                   SLOT(onPrepareForSleep(bool)));
    find();
}

void LogindSession::find()
{
    m_path = sessionPath();
    if (m_path.isEmpty())
        return;
    // First to listen, then to ask: a change between the two would be missed.
    m_bus->connect(kService, m_path, kProperties, kPropertiesChanged, this,
                   SLOT(onPropertiesChanged(QString, QVariantMap, QStringList)));
    take(properties());
}

void LogindSession::lose()
{
    if (m_path.isEmpty())
        return;
    m_bus->disconnect(kService, m_path, kProperties, kPropertiesChanged, this,
                      SLOT(onPropertiesChanged(QString, QVariantMap, QStringList)));
    m_path.clear();
}

QString LogindSession::sessionPath()
{
    // A program that the desktop starts as a service of the user's is in no session by its process.
    const QString session = qEnvironmentVariable("XDG_SESSION_ID");
    const auto process = static_cast<quint32>(QCoreApplication::applicationPid());
    const QDBusMessage question = session.isEmpty()
                                      ? ask(kManagerPath, kManager, u"GetSessionByPID"_s, {process})
                                      : ask(kManagerPath, kManager, u"GetSession"_s, {session});
    const QDBusReply<QDBusObjectPath> path = m_bus->call(question, QDBus::Block, kPatience);
    return path.isValid() ? path.value().path() : QString();
}

QVariantMap LogindSession::properties()
{
    const QDBusReply<QVariantMap> properties =
        m_bus->call(ask(m_path, kProperties, u"GetAll"_s, {kSession}), QDBus::Block, kPatience);
    return properties.isValid() ? properties.value() : QVariantMap();
}

void LogindSession::take(const QVariantMap& properties)
{
    const auto update = [&](const QString& name, std::optional<bool>& value) {
        const QVariant told = properties.value(name);
        if (told.typeId() != QMetaType::Bool || value == told.toBool())
            return false;
        value = told.toBool();
        return true;
    };
    const bool hasLockChanged = update(u"LockedHint"_s, m_isLocked);
    const bool hasActiveChanged = update(u"Active"_s, m_isActive);
    if (hasLockChanged)
        Q_EMIT lockedChanged();
    if (hasActiveChanged)
        Q_EMIT activeChanged();
}

void LogindSession::onPrepareForSleep(bool isBeginning)
{
    if (isBeginning)
        Q_EMIT goesToSleep();
    else
        Q_EMIT woke();
}

void LogindSession::onPropertiesChanged(const QString& interface, const QVariantMap& changed,
                                        const QStringList& invalidated)
{
    if (interface != kSession)
        return;
    take(changed);
    if (invalidated.contains(u"LockedHint"_s) || invalidated.contains(u"Active"_s))
        take(properties());
}

} // namespace mossbank
