// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/ScreenSaver.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <algorithm>
#include <utility>

namespace mossbank {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// While somebody waits for it, and while nobody does. In milliseconds.
constexpr int kShortPatience = 250;
constexpr int kPatience = 4000;

/// Some have the name for something else and never answer this.
std::chrono::seconds restAfter(int tries)
{
    constexpr auto kFirst = 1s;
    constexpr int kMostDoublings = 6;
    return kFirst * (1 << std::min(tries, kMostDoublings));
}

} // namespace

ScreenSaver::ScreenSaver(BusConnection& bus, const QString& service, const QString& path,
                         QObject* parent)
    : QObject(parent)
    , m_bus(bus)
    , m_service(service)
    , m_path(path)
    , m_watcher(service, *bus, QDBusServiceWatcher::WatchForOwnerChange)
{
    constexpr auto kUntilItIsBack = 10s;
    m_untilItIsBack.setInterval(kUntilItIsBack);
    m_untilItIsBack.setSingleShot(true);
    connect(&m_untilItIsBack, &QTimer::timeout, this, [this] { setActive(false); });
    m_untilNextTry.setSingleShot(true);
    connect(&m_untilNextTry, &QTimer::timeout, this, &ScreenSaver::askAgain);
    connect(
        &m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](const QString&, const QString&, const QString& to) { changeOwner(!to.isEmpty()); });
    // On whichever path it tells.
    m_bus->connect(m_service, QString(), m_service, u"ActiveChanged"_s, this,
                   SLOT(onActiveChanged(bool)));
}

QDBusPendingCall ScreenSaver::call(int patience)
{
    QDBusMessage question =
        QDBusMessage::createMethodCall(m_service, m_path, m_service, u"GetActive"_s);
    // Asking must not start one.
    question.setAutoStartService(false);
    return m_bus->asyncCall(question, patience);
}

void ScreenSaver::ask()
{
    m_first = call(kShortPatience);
}

void ScreenSaver::hearAtOnce()
{
    m_first->waitForFinished();
    hear(*std::exchange(m_first, std::nullopt));
}

void ScreenSaver::askAgain()
{
    const auto* const answer = new QDBusPendingCallWatcher(call(kPatience), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this,
            [this, owner = m_owner](QDBusPendingCallWatcher* told) {
                told->deleteLater();
                if (owner == m_owner)
                    hear(*told);
            });
}

void ScreenSaver::hear(const QDBusPendingCall& answer)
{
    const QDBusPendingReply<bool> isActive = answer;
    if (isActive.isValid())
        take(isActive.value());
    else if (!m_isThere && answer.error().type() != QDBusError::ServiceUnknown)
        restUntilNextTry();
}

void ScreenSaver::restUntilNextTry()
{
    m_untilNextTry.start(restAfter(m_tries));
    ++m_tries;
}

void ScreenSaver::changeOwner(bool hasOwner)
{
    ++m_owner;
    m_isThere = false;
    m_tries = 0;
    m_untilNextTry.stop();
    if (m_isActive && !m_untilItIsBack.isActive())
        m_untilItIsBack.start();
    if (hasOwner)
        askAgain();
}

void ScreenSaver::onActiveChanged(bool isActive)
{
    take(isActive);
}

void ScreenSaver::take(bool isActive)
{
    m_isThere = true;
    m_untilNextTry.stop();
    m_untilItIsBack.stop();
    setActive(isActive);
}

void ScreenSaver::setActive(bool isActive)
{
    if (std::exchange(m_isActive, isActive) != isActive)
        Q_EMIT activeChanged();
}

} // namespace mossbank
