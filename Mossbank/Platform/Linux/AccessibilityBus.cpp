// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/AccessibilityBus.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

/// A program that is well answers in a few milliseconds.
constexpr int kProgramLimit = 200;
/// Chromium looks through a page of some thousand paragraphs in a third of a second, and answers
/// nothing else meanwhile.
constexpr int kPatientLimit = 1000;
/// The desktop may have to start what is asked here first.
constexpr int kServiceLimit = 5000;
constexpr int kSoon = 500;
constexpr int kLongest = 30'000;

const QString kService = u"org.a11y.Bus"_s;
const QString kServicePath = u"/org/a11y/bus"_s;
const QString kStatus = u"org.a11y.Status"_s;
const QString kProperties = u"org.freedesktop.DBus.Properties"_s;
const QString kRegistry = u"org.a11y.atspi.Registry"_s;
const QString kObjectEvents = u"org.a11y.atspi.Event.Object"_s;

QString busIsMissing()
{
    return u"The accessibility bus of this session is missing; on Debian it is in the package "
           u"at-spi2-core."_s;
}

QString sessionIsSilent()
{
    return u"The session bus does not answer."_s;
}

bool isReply(const QDBusMessage& message)
{
    return message.type() == QDBusMessage::ReplyMessage;
}

// Made in functions of their own: the compiler of Debian 12 loses lists within a `co_await`.

BusCall addressCall()
{
    return {kService, kServicePath, kService, u"GetAddress"_s};
}

BusCall statusCall()
{
    return {kService, kServicePath, kProperties, u"Get"_s, {kStatus, u"IsEnabled"_s}};
}

BusCall switchOnCall()
{
    const QVariant on = QVariant::fromValue(QDBusVariant(true));
    return {kService, kServicePath, kProperties, u"Set"_s, {kStatus, u"IsEnabled"_s, on}};
}

BusCall eventsCall()
{
    return {kRegistry,
            u"/org/a11y/atspi/registry"_s,
            kRegistry,
            u"RegisterEvent"_s,
            {u"object:state-changed:focused"_s}};
}

BusSignals ownersOf(const QString& name)
{
    return {.service = u"org.freedesktop.DBus"_s,
            .interface = u"org.freedesktop.DBus"_s,
            .member = u"NameOwnerChanged"_s,
            .firstArgument = name};
}

BusSignals statusChanges()
{
    return {.path = kServicePath,
            .interface = kProperties,
            .member = u"PropertiesChanged"_s,
            .firstArgument = kStatus};
}

BusSignals focusChanges()
{
    return {.interface = kObjectEvents, .member = u"StateChanged"_s, .firstArgument = u"focused"_s};
}

BusSignals programChanges()
{
    return {.service = kRegistry,
            .path = u"/org/a11y/atspi/accessible/root"_s,
            .interface = kObjectEvents,
            .member = u"ChildrenChanged"_s};
}

} // namespace

QString sessionBusAddress()
{
    const QString told = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    if (!told.isEmpty())
        return told;
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const QString usual = runtime + u"/bus"_s;
    return !runtime.isEmpty() && QFileInfo::exists(usual) ? u"unix:path="_s + usual : QString();
}

AccessibilityBus::AccessibilityBus()
{
    m_again.setSingleShot(true);
    connect(&m_again, &QTimer::timeout, this, [this] { look(); });
    connect(&m_session, &BusLink::lost, this, &AccessibilityBus::startOver);
    connect(&m_programs, &BusLink::lost, this, [this] {
        say(busIsMissing());
        Q_EMIT closed();
        lookAgainLater();
    });
}

AccessibilityBus::~AccessibilityBus() = default;

void AccessibilityBus::start()
{
    look();
}

QString AccessibilityBus::whyUnreachable() const
{
    const QMutexLocker lock(&m_mutex);
    return m_reason;
}

bool AccessibilityBus::isSwitchedOn() const
{
    const QMutexLocker lock(&m_mutex);
    return m_isSwitchedOn;
}

bool AccessibilityBus::hasLooked() const
{
    const QMutexLocker lock(&m_mutex);
    return m_hasLooked;
}

void AccessibilityBus::say(const QString& reason)
{
    const QMutexLocker lock(&m_mutex);
    m_reason = reason;
    m_hasLooked = true;
}

/// One search after the other, so that a bus that comes while another is being opened does not
/// meet it half way.
QCoro::Task<> AccessibilityBus::look()
{
    if (m_isLooking || m_programs.isOpen())
        co_return;
    m_isLooking = true;
    m_again.stop();
    QString reason = co_await findSession();
    if (reason.isEmpty())
        reason = co_await openPrograms();
    m_isLooking = false;
    if (!reason.isEmpty()) {
        m_programs.close();
        lookAgainLater();
        if (!hasLooked())
            Q_EMIT notFound();
        say(reason);
        co_return;
    }
    m_attempts = 0;
    Q_EMIT opened();
    say(reason);
}

/// Why there is no session bus. Empty when there is one.
QCoro::Task<QString> AccessibilityBus::findSession()
{
    if (m_session.isOpen())
        co_return QString();
    const QString address = sessionBusAddress();
    if (address.isEmpty())
        co_return u"There is no session bus."_s;
    if (!co_await m_session.open(address, kServiceLimit))
        co_return sessionIsSilent();
    co_await m_session.listen(ownersOf(kService), this, SLOT(hearOwner(QDBusMessage)),
                              kServiceLimit);
    co_await m_session.listen(statusChanges(), this, SLOT(hearStatus(QDBusMessage)), kServiceLimit);
    co_return QString();
}

/// Why the bus itself is not there. Empty when it is.
QCoro::Task<QString> AccessibilityBus::openPrograms()
{
    const QString missing = busIsMissing();
    const QDBusMessage answer = co_await m_session.call(addressCall(), kServiceLimit);
    const QString address = answer.arguments().value(0).toString();
    if (!isReply(answer) || address.isEmpty())
        co_return missing;
    if (m_isWantedOn)
        co_await m_session.call(switchOnCall(), kServiceLimit);
    co_await readStatus();
    m_silent.clear();
    if (!co_await m_programs.open(address, kServiceLimit))
        co_return missing;
    const bool isHeard = co_await m_programs.listen(focusChanges(), this,
                                                    SLOT(hearFocus(QDBusMessage)), kServiceLimit);
    co_await m_programs.listen(programChanges(), this, SLOT(hearPrograms(QDBusMessage)),
                               kServiceLimit);
    co_await m_programs.listen(ownersOf(kRegistry), this, SLOT(hearOwner(QDBusMessage)),
                               kServiceLimit);
    const bool isWanted = co_await askForEvents();
    co_return isHeard&& isWanted ? QString() : missing;
}

/// Programs tell of what somebody wants to hear only, and the registry knows of it only for as
/// long as it runs.
QCoro::Task<bool> AccessibilityBus::askForEvents()
{
    const QDBusMessage answer = co_await m_programs.call(eventsCall(), kServiceLimit);
    co_return isReply(answer);
}

QCoro::Task<> AccessibilityBus::readStatus()
{
    const QDBusMessage answer = co_await m_session.call(statusCall(), kServiceLimit);
    const QVariant value = answer.arguments().value(0);
    const QMutexLocker lock(&m_mutex);
    // One that has no such switch has nothing to be switched off.
    m_isSwitchedOn = !isReply(answer) || value.value<QDBusVariant>().variant().toBool();
}

QCoro::Task<QDBusMessage> AccessibilityBus::ask(BusCall call)
{
    const auto now = [] {
        return std::chrono::steady_clock::now();
    };
    const QString service = call.service;
    if (m_silent.isLeftAlone(service, now()))
        co_return QDBusMessage().createErrorReply(QDBusError::NoReply, u"It was silent before."_s);
    const QDBusMessage answer = co_await m_programs.call(std::move(call), kProgramLimit);
    if (isSilence(answer))
        m_silent.keptSilent(service, now());
    else
        m_silent.answered(service);
    co_return answer;
}

bool AccessibilityBus::isLeftAlone(const QString& service) const
{
    return m_silent.isLeftAlone(service, std::chrono::steady_clock::now());
}

QCoro::Task<QDBusMessage> AccessibilityBus::askPatiently(BusCall call)
{
    const QString service = call.service;
    const QDBusMessage answer = co_await m_programs.call(std::move(call), kPatientLimit);
    if (!isSilence(answer))
        m_silent.answered(service);
    co_return answer;
}

QCoro::Task<> AccessibilityBus::switchOn()
{
    m_isWantedOn = true;
    co_await m_session.call(switchOnCall(), kServiceLimit);
    co_await readStatus();
}

void AccessibilityBus::hearOwner(const QDBusMessage& message)
{
    const QList<QVariant> arguments = message.arguments();
    if (arguments.value(2).toString().isEmpty())
        return;
    if (arguments.value(0).toString() == kRegistry)
        askForEvents();
    else
        look();
}

void AccessibilityBus::hearStatus(const QDBusMessage&)
{
    readStatus();
}

void AccessibilityBus::hearFocus(const QDBusMessage& message)
{
    // Whoever tells something is not silent.
    m_silent.answered(message.service());
    const QList<QVariant> arguments = message.arguments();
    if (arguments.size() >= 2)
        Q_EMIT focusChanged(message.service(), message.path(), arguments[1].toInt() != 0);
}

void AccessibilityBus::hearPrograms(const QDBusMessage&)
{
    Q_EMIT programsChanged();
}

void AccessibilityBus::lookAgainLater()
{
    const int wait = std::min(kSoon << std::min(m_attempts, 10), kLongest);
    ++m_attempts;
    if (!m_again.isActive())
        m_again.start(wait);
}

void AccessibilityBus::startOver()
{
    say(sessionIsSilent());
    const bool wasOpen = m_programs.isOpen();
    m_programs.close();
    if (wasOpen)
        Q_EMIT closed();
    lookAgainLater();
}

} // namespace mossbank
