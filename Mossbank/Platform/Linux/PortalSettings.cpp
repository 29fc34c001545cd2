// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/PortalSettings.h"

#include "Mossbank/Platform/Linux/AccessibilityBus.h"

#include <QDBusArgument>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

constexpr std::chrono::milliseconds kLongest = std::chrono::minutes(1);

const QString kService = u"org.freedesktop.portal.Desktop"_s;
const QString kPath = u"/org/freedesktop/portal/desktop"_s;
const QString kSettings = u"org.freedesktop.portal.Settings"_s;

// Made in functions of their own: the compiler of Debian 12 loses lists within a `co_await`.

BusCall readCall()
{
    return {kService, kPath, kSettings, u"ReadAll"_s, {PortalValues::namespaces()}};
}

BusSignals ownerChanges()
{
    return {.service = u"org.freedesktop.DBus"_s,
            .interface = u"org.freedesktop.DBus"_s,
            .member = u"NameOwnerChanged"_s,
            .firstArgument = kService};
}

BusSignals settingChanges()
{
    return {
        .service = kService, .path = kPath, .interface = kSettings, .member = u"SettingChanged"_s};
}

int inMilliseconds(std::chrono::milliseconds limit)
{
    return static_cast<int>(limit.count());
}

QString busIsSilent()
{
    return u"The session bus does not answer, so what is chosen for this desktop is not known."_s;
}

} // namespace

PortalSettings::PortalSettings(const Limits& limits)
    : m_limits(limits)
{
    m_again.setSingleShot(true);
    connect(&m_again, &QTimer::timeout, this, [this] {
        if (m_bus.isOpen())
            ask();
        else
            listen();
    });
    connect(&m_bus, &BusLink::lost, this, [this] {
        m_reason = busIsSilent();
        tryAgainLater();
    });
    listen();
}

PortalSettings::~PortalSettings() = default;

Availability PortalSettings::availability() const
{
    return m_reason.isEmpty() ? Availability() : Availability::missing(m_reason);
}

QCoro::Task<> PortalSettings::listen()
{
    if (m_isConnecting)
        co_return;
    m_isConnecting = true;
    const bool isHeard = co_await subscribe();
    m_isConnecting = false;
    if (!isHeard) {
        m_bus.close();
        m_reason = busIsSilent();
        tryAgainLater();
        co_return;
    }
    ask();
}

/// Listening comes before asking: a change between the two would be missed.
QCoro::Task<bool> PortalSettings::subscribe()
{
    const QString address = sessionBusAddress();
    const int limit = inMilliseconds(m_limits.bus);
    const BusSignals owners = ownerChanges();
    const BusSignals changes = settingChanges();
    bool isHeard = !address.isEmpty();
    if (isHeard)
        isHeard = co_await m_bus.open(address, limit);
    if (isHeard)
        isHeard = co_await m_bus.listen(owners, this, SLOT(hearOwner(QDBusMessage)), limit);
    if (isHeard)
        isHeard = co_await m_bus.listen(changes, this, SLOT(hearChange(QDBusMessage)), limit);
    co_return isHeard;
}

/// One question at a time, and one more when there is reason for it meanwhile.
QCoro::Task<> PortalSettings::ask()
{
    m_isToBeAsked = true;
    if (m_isAsking)
        co_return;
    m_isAsking = true;
    const BusCall read = readCall();
    const int limit = inMilliseconds(m_limits.answer);
    while (m_isToBeAsked) {
        m_isToBeAsked = false;
        const QDBusMessage answer = co_await m_bus.call(read, limit);
        take(answer);
    }
    m_isAsking = false;
}

void PortalSettings::take(const QDBusMessage& answer)
{
    if (!m_bus.isOpen())
        return;
    const bool isReply =
        answer.type() == QDBusMessage::ReplyMessage && answer.signature() == u"a{sa{sv}}";
    if (isReply) {
        PortalValues::All all;
        answer.arguments().constFirst().value<QDBusArgument>() >> all;
        m_values.replace(all);
        m_reason.clear();
        m_attempts = 0;
        tellWhatIsNew();
        return;
    }
    // Another that comes is heard of; one that is there may have been too busy to answer.
    m_reason = u"No portal tells what is chosen for this desktop."_s;
    if (isSilence(answer))
        tryAgainLater();
}

void PortalSettings::hearOwner(const QDBusMessage& message)
{
    if (!message.arguments().value(2).toString().isEmpty())
        ask();
}

void PortalSettings::hearChange(const QDBusMessage& message)
{
    const QVariantList told = message.arguments();
    if (message.signature() != u"ssv")
        return;
    m_values.change(told[0].toString(), told[1].toString(), told[2]);
    // What is being asked may be answered with what was before.
    m_isToBeAsked = m_isAsking;
    tellWhatIsNew();
}

void PortalSettings::tellWhatIsNew()
{
    const ColourScheme scheme = m_values.colourScheme();
    const bool reduces = m_values.reducesMotion();
    const bool isOtherScheme = std::exchange(m_colourScheme, scheme) != scheme;
    const bool isOtherMotion = std::exchange(m_reducesMotion, reduces) != reduces;
    if (isOtherScheme || isOtherMotion)
        Q_EMIT changed();
}

void PortalSettings::tryAgainLater()
{
    if (m_again.isActive())
        return;
    m_again.start(std::min(m_limits.again * (1 << std::min(m_attempts, 10)), kLongest));
    ++m_attempts;
}

} // namespace mossbank
