// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/LogindSession.h"

#include <QCoreApplication>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

#include <utility>

namespace mossbank {

using namespace Qt::StringLiterals;

namespace {

const QString kService = u"org.freedesktop.login1"_s;
const QString kManagerPath = u"/org/freedesktop/login1"_s;
const QString kManager = u"org.freedesktop.login1.Manager"_s;
const QString kSession = u"org.freedesktop.login1.Session"_s;
const QString kProperties = u"org.freedesktop.DBus.Properties"_s;
const QString kPropertiesChanged = u"PropertiesChanged"_s;
const QString kLockedHint = u"LockedHint"_s;
const QString kActive = u"Active"_s;

constexpr int kPatience = 250;

QDBusMessage question(const QString& path, const QString& interface, const QString& method,
                      const QVariantList& arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(kService, path, interface, method);
    message.setArguments(arguments);
    message.setAutoStartService(false);
    return message;
}

/// Every way to ask for the session of this process, the surest first. A program that the desktop
/// starts as a service of the user's is in no session by its process, and has no name of one in its
/// environment; logind then knows the user's session that has a display as "auto".
QList<QDBusMessage> questions()
{
    QList<QDBusMessage> questions;
    const auto ask = [&](const QString& method, const QVariant& argument) {
        questions.append(question(kManagerPath, kManager, method, {argument}));
    };
    if (const QString session = qEnvironmentVariable("XDG_SESSION_ID"); !session.isEmpty())
        ask(u"GetSession"_s, session);
    ask(u"GetSessionByPID"_s, static_cast<quint32>(QCoreApplication::applicationPid()));
    ask(u"GetSession"_s, u"auto"_s);
    return questions;
}

/// Absent where it is not among them, or is no yes or no.
std::optional<bool> saidIn(const QVariantMap& properties, const QString& name)
{
    const QVariant value = properties.value(name);
    return value.typeId() == QMetaType::Bool ? std::optional(value.toBool()) : std::nullopt;
}

} // namespace

LogindSession::LogindSession(QObject* parent)
    : QObject(parent)
    , m_bus(QDBusConnection::SystemBus)
{
    constexpr auto kBetweenTries = std::chrono::seconds(5);
    m_untilNextTry.setInterval(kBetweenTries);
    m_untilNextTry.setSingleShot(true);
    connect(&m_untilNextTry, &QTimer::timeout, this, [this] {
        find();
        askWhetherGoingToSleep();
    });
    if (!m_bus->isConnected())
        return;
    m_watcher.setConnection(*m_bus);
    m_watcher.addWatchedService(kService);
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) {
                lose();
                if (owner.isEmpty())
                    return;
                find();
                askWhetherGoingToSleep();
            });
    m_bus->connect(kService, kManagerPath, kManager, u"PrepareForSleep"_s, this,
                   SLOT(onPrepareForSleep(bool)));
    m_bus->connect(kService, kManagerPath, kManager, u"PrepareForShutdown"_s, this,
                   SLOT(onPrepareForShutdown(bool)));

    // What is so now has to be known before the first look at the screen.
    m_questions = questions();
    while (!isFollowed() && !m_questions.isEmpty()) {
        QDBusPendingCall path = askPath();
        path.waitForFinished();
        QDBusPendingCall properties = askProperties(pathIn(path));
        properties.waitForFinished();
        follow(pathIn(path), properties);
    }
    if (!isFollowed())
        tryAgainLater();
}

void LogindSession::tryAgainLater()
{
    // One that comes is told of; one that is there may have been too busy to answer.
    if (m_isRunning && m_bus->isConnected())
        m_untilNextTry.start();
}

/// One that came anew may have told of the wake while nobody was there to tell it.
void LogindSession::askWhetherGoingToSleep()
{
    if (!m_isGoingToSleep)
        return;
    const QDBusPendingCall call = m_bus->asyncCall(
        question(kManagerPath, kProperties, u"Get"_s, {kManager, u"PreparingForSleep"_s}),
        kPatience);
    const auto* const answer = new QDBusPendingCallWatcher(call, this);
    connect(answer, &QDBusPendingCallWatcher::finished, this,
            [this](QDBusPendingCallWatcher* told) {
                told->deleteLater();
                const QDBusPendingReply<QDBusVariant> isIt = *told;
                const QVariant isSo = isIt.isValid() ? isIt.value().variant() : QVariant();
                if (isSo.typeId() != QMetaType::Bool)
                    tryAgainLater();
                else if (m_isGoingToSleep && !isSo.toBool())
                    onPrepareForSleep(false);
            });
}

void LogindSession::find()
{
    m_questions = questions();
    m_saysNothing = false;
    findNext();
}

void LogindSession::findNext()
{
    if (isFollowed())
        return;
    if (m_questions.isEmpty()) {
        // What one said that has gone stands no longer once another knows nothing of it.
        if (m_saysNothing)
            take({}, {});
        tryAgainLater();
        return;
    }
    const auto* const path = new QDBusPendingCallWatcher(askPath(), this);
    connect(path, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* told) {
        told->deleteLater();
        const QString where = pathIn(*told);
        const auto* const properties = new QDBusPendingCallWatcher(askProperties(where), this);
        connect(properties, &QDBusPendingCallWatcher::finished, this,
                [this, where](QDBusPendingCallWatcher* answer) {
                    answer->deleteLater();
                    if (!follow(where, *answer))
                        findNext();
                });
    });
}

QDBusPendingCall LogindSession::askPath()
{
    return m_bus->asyncCall(m_questions.takeFirst(), kPatience);
}

QDBusPendingCall LogindSession::askProperties(const QString& path)
{
    if (path.isEmpty())
        return QDBusPendingCall::fromError(QDBusError(QDBusError::UnknownObject, path));
    // First to listen, then to ask: a change between the two would be missed.
    m_bus->connect(kService, path, kProperties, kPropertiesChanged, this,
                   SLOT(onPropertiesChanged(QString, QVariantMap, QStringList)));
    return m_bus->asyncCall(question(path, kProperties, u"GetAll"_s, {kSession}), kPatience);
}

QString LogindSession::pathIn(const QDBusPendingCall& answer)
{
    const QDBusPendingReply<QDBusObjectPath> path = answer;
    m_isRunning = path.error().type() != QDBusError::ServiceUnknown;
    return path.isValid() ? path.value().path() : QString();
}

bool LogindSession::follow(const QString& path, const QDBusPendingCall& properties)
{
    const QDBusPendingReply<QVariantMap> answer = properties;
    const QVariantMap all = answer.isValid() ? answer.value() : QVariantMap();
    const auto isLocked = saidIn(all, kLockedHint);
    const auto isActive = saidIn(all, kActive);
    if (!isLocked && !isActive) {
        m_saysNothing |= answer.isValid();
        if (!path.isEmpty())
            m_bus->disconnect(kService, path, kProperties, kPropertiesChanged, this,
                              SLOT(onPropertiesChanged(QString, QVariantMap, QStringList)));
        return false;
    }
    m_path = path;
    take(isLocked, isActive);
    return true;
}

void LogindSession::lose()
{
    m_untilNextTry.stop();
    m_questions.clear();
    if (m_path.isEmpty())
        return;
    m_bus->disconnect(kService, m_path, kProperties, kPropertiesChanged, this,
                      SLOT(onPropertiesChanged(QString, QVariantMap, QStringList)));
    m_path.clear();
}

void LogindSession::take(std::optional<bool> isLocked, std::optional<bool> isActive)
{
    const bool hasLockChanged = std::exchange(m_isLocked, isLocked) != isLocked;
    const bool hasActiveChanged = std::exchange(m_isActive, isActive) != isActive;
    if (hasLockChanged)
        Q_EMIT lockedChanged();
    if (hasActiveChanged)
        Q_EMIT activeChanged();
}

void LogindSession::onPrepareForSleep(bool isBeginning)
{
    m_isGoingToSleep = isBeginning;
    Q_EMIT sleepChanged();
}

void LogindSession::onPrepareForShutdown(bool isBeginning)
{
    // The end of it is told where it was called off.
    if (isBeginning)
        Q_EMIT shutsDown();
}

void LogindSession::onPropertiesChanged(const QString& interface, const QVariantMap& changed,
                                        const QStringList& invalidated)
{
    if (interface != kSession)
        return;
    // What it said before stands where it says nothing of use now.
    const auto isLocked = saidIn(changed, kLockedHint);
    const auto isActive = saidIn(changed, kActive);
    take(isLocked ? isLocked : m_isLocked, isActive ? isActive : m_isActive);
    if (invalidated.contains(kLockedHint) || invalidated.contains(kActive)) {
        lose();
        find();
    }
}

} // namespace mossbank
