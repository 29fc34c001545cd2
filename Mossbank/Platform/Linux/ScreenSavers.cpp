// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/ScreenSavers.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QTimer>

#include <algorithm>
#include <utility>
#include <vector>

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

} // namespace

ScreenSavers::ScreenSavers(QObject* parent)
    : QObject(parent)
    , m_bus(QDBusConnection::SessionBus)
{
    if (!m_bus->isConnected())
        return;
    m_watcher.setConnection(*m_bus);
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString& service, const QString&, const QString& owner) {
                if (owner.isEmpty())
                    disappear(service);
                else
                    appear(service);
            });
    std::vector<std::pair<QString, QDBusPendingCall>> answers;
    for (const QString& service : paths().keys()) {
        m_watcher.addWatchedService(service);
        // On whichever path it tells.
        m_bus->connect(service, QString(), service, u"ActiveChanged"_s, this,
                       SLOT(onActiveChanged(bool, QDBusMessage)));
        answers.emplace_back(service, ask(service));
    }
    // What is so now has to be known before the first look at the screen.
    for (auto& [service, answer] : answers) {
        answer.waitForFinished();
        hear(service, answer);
    }
}

bool ScreenSavers::isThere() const
{
    return m_bus->isConnected() && std::ranges::any_of(m_states, &State::isThere);
}

bool ScreenSavers::isActive() const
{
    return m_bus->isConnected() && std::ranges::any_of(m_states, &State::isActive);
}

QDBusPendingCall ScreenSavers::ask(const QString& service)
{
    QDBusMessage question =
        QDBusMessage::createMethodCall(service, paths().value(service), service, u"GetActive"_s);
    // Asking must not start one.
    question.setAutoStartService(false);
    return m_bus->asyncCall(question, kPatience);
}

void ScreenSavers::hear(const QString& service, const QDBusPendingCall& answer)
{
    const QDBusPendingReply<bool> isActive = answer;
    if (!isActive.isValid())
        return;
    m_states[service].isThere = true;
    setActive(service, isActive.value());
}

void ScreenSavers::appear(const QString& service)
{
    m_states[service].isThere = true;
    const auto* const answer = new QDBusPendingCallWatcher(ask(service), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this,
            [this, service](QDBusPendingCallWatcher* told) {
                told->deleteLater();
                hear(service, *told);
            });
}

void ScreenSavers::disappear(const QString& service)
{
    constexpr auto kUntilItIsBack = std::chrono::seconds(10);
    m_states[service].isThere = false;
    QTimer::singleShot(kUntilItIsBack, this, [this, service] {
        if (!m_states.value(service).isThere)
            setActive(service, false);
    });
}

void ScreenSavers::onActiveChanged(bool isActive, const QDBusMessage& message)
{
    setActive(message.interface(), isActive);
}

void ScreenSavers::setActive(const QString& service, bool isActive)
{
    if (std::exchange(m_states[service].isActive, isActive) != isActive)
        Q_EMIT activeChanged();
}

} // namespace mossbank
