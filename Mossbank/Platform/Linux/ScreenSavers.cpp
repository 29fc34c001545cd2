// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/ScreenSavers.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusReply>

namespace mossbank {

using namespace Qt::StringLiterals;

namespace {

constexpr int kPatience = 250;

/// Each by its service, whose name is that of its interface, too.
const QMap<QString, QString>& paths()
{
    static const QMap<QString, QString> kPaths = {
        {u"org.freedesktop.ScreenSaver"_s, u"/org/freedesktop/ScreenSaver"_s},
        {u"org.gnome.ScreenSaver"_s, u"/org/gnome/ScreenSaver"_s},
        {u"org.cinnamon.ScreenSaver"_s, u"/org/cinnamon/ScreenSaver"_s},
        {u"org.mate.ScreenSaver"_s, u"/org/mate/ScreenSaver"_s},
        {u"org.xfce.ScreenSaver"_s, u"/org/xfce/ScreenSaver"_s},
    };
    return kPaths;
}

QDBusMessage getActive(const QString& service)
{
    return QDBusMessage::createMethodCall(service, paths().value(service), service, u"GetActive"_s);
}

} // namespace

ScreenSavers::ScreenSavers(QObject* parent)
    : QObject(parent)
    , m_bus(QDBusConnection::SessionBus)
{
    if (!m_bus->isConnected())
        return;
    m_watcher.setConnection(*m_bus);
    connect(&m_watcher, &QDBusServiceWatcher::serviceRegistered, this, &ScreenSavers::appear);
    connect(&m_watcher, &QDBusServiceWatcher::serviceUnregistered, this, &ScreenSavers::disappear);
    for (const QString& service : paths().keys()) {
        m_watcher.addWatchedService(service);
        // On whichever path it tells.
        m_bus->connect(service, QString(), service, u"ActiveChanged"_s, this,
                       SLOT(onActiveChanged(bool, QDBusMessage)));
        if (!hasOwner(service))
            continue;
        const QDBusReply<bool> isActive = m_bus->call(getActive(service), QDBus::Block, kPatience);
        m_isActive.insert(service, isActive.isValid() && isActive.value());
    }
}

bool ScreenSavers::isActive() const
{
    return m_isActive.values().contains(true);
}

bool ScreenSavers::hasOwner(const QString& service)
{
    // A screen saver that is asked without this may be started by being asked.
    QDBusMessage question =
        QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                       u"org.freedesktop.DBus"_s, u"NameHasOwner"_s);
    question.setArguments({service});
    const QDBusReply<bool> hasOwner = m_bus->call(question, QDBus::Block, kPatience);
    return hasOwner.isValid() && hasOwner.value();
}

void ScreenSavers::appear(const QString& service)
{
    m_isActive.insert(service, false);
    auto* const answer = new QDBusPendingCallWatcher(m_bus->asyncCall(getActive(service)), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, service, answer] {
        const QDBusPendingReply<bool> isActive = *answer;
        if (isActive.isValid())
            setActive(service, isActive.value());
        answer->deleteLater();
    });
}

void ScreenSavers::disappear(const QString& service)
{
    setActive(service, false);
    m_isActive.remove(service);
}

void ScreenSavers::onActiveChanged(bool isActive, const QDBusMessage& message)
{
    setActive(message.interface(), isActive);
}

void ScreenSavers::setActive(const QString& service, bool isActive)
{
    const auto known = m_isActive.find(service);
    if (known == m_isActive.end() || *known == isActive)
        return;
    *known = isActive;
    Q_EMIT activeChanged();
}

} // namespace mossbank
