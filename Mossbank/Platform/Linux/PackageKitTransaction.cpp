// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/PackageKitTransaction.h"

#include <QCoro/QCoroSignal>
#include <QDBusError>
#include <QDBusObjectPath>

#include <algorithm>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

const QString kService = u"org.freedesktop.PackageKit"_s;
const QString kPath = u"/org/freedesktop/PackageKit"_s;
const QString kTransaction = u"org.freedesktop.PackageKit.Transaction"_s;

/// Of PackageKit's lists of numbers.
constexpr uint kSuccess = 1;
constexpr uint kNotAuthorized = 48;
/// A machine has some ten thousand packages.
constexpr qsizetype kMostPackages = 100'000;
constexpr qsizetype kLongestText = 300;

// Made in functions of their own: the compiler of Debian 12 loses lists within a `co_await`.

BusCall createCall()
{
    return {kService, kPath, kService, u"CreateTransaction"_s};
}

BusCall transactionCall(const QString& owner, const QString& path, const QString& method,
                        const QVariantList& arguments)
{
    return {owner, path, kTransaction, method, arguments};
}

/// Nobody is asked for a password because of it.
BusCall hintsCall(const QString& owner, const QString& path)
{
    return transactionCall(owner, path, u"SetHints"_s,
                           {QStringList{u"interactive=false"_s, u"background=false"_s}});
}

BusSignals tellingOf(const QString& owner, const QString& path, const QString& member)
{
    return {.service = owner, .path = path, .interface = kTransaction, .member = member};
}

BusSignals ownerChanges()
{
    return {.service = u"org.freedesktop.DBus"_s,
            .interface = u"org.freedesktop.DBus"_s,
            .member = u"NameOwnerChanged"_s,
            .firstArgument = kService};
}

bool isReply(const QDBusMessage& message)
{
    return message.type() == QDBusMessage::ReplyMessage;
}

/// PackageKit's words in a sentence of ours, whatever they are.
QString saying(const QString& words)
{
    const QString said = words.simplified().left(kLongestText);
    return said.isEmpty() ? u"PackageKit failed and did not say why."_s
                          : u"PackageKit says: %1"_s.arg(said);
}

} // namespace

std::optional<PackageId> PackageId::in(const QString& text)
{
    const QStringList parts = text.split(u';');
    const auto isFit = [](const QString& part) {
        return !part.isEmpty() && part.size() <= kLongestText &&
               std::ranges::all_of(part, [](QChar sign) { return sign.isPrint(); });
    };
    if (parts.size() != 4 || !isFit(parts[0]) || !isFit(parts[1]))
        return std::nullopt;
    return PackageId{parts[0], parts[1]};
}

PackageKitTransaction::PackageKitTransaction(BusLink& bus)
    : m_bus(bus)
{
    m_limit.setSingleShot(true);
    connect(&m_limit, &QTimer::timeout, this, [this] {
        if (!m_path.isEmpty())
            m_bus.call(transactionCall(m_owner, m_path, u"Cancel"_s, {}), 1000);
        fail(PackageKitResult::End::Failed, u"PackageKit did not come to an end in time."_s);
    });
    connect(&m_bus, &BusLink::lost, this,
            [this] { fail(PackageKitResult::End::Failed, u"The system bus has gone."_s); });
}

QCoro::Task<PackageKitResult> PackageKitTransaction::run(PackageKitOrder order,
                                                         QDeadlineTimer deadline)
{
    m_deadline = deadline;
    m_name = order.name;
    m_limit.start(timeLeft());
    // It may tell of its end before the call that began it is answered, so listening comes first.
    co_await create();
    if (!m_hasEnded)
        co_await subscribe();
    if (!m_hasEnded)
        co_await begin(order);
    if (!m_hasEnded)
        co_await qCoro(this, &PackageKitTransaction::ended);
    co_return m_result;
}

void PackageKitTransaction::abandon()
{
    fail(PackageKitResult::End::Failed, u"It is no longer wanted."_s);
}

QCoro::Task<> PackageKitTransaction::create()
{
    // By its name, so that the bus starts it where it does not run.
    const QDBusMessage created = co_await m_bus.call(createCall(), timeLeft());
    if (!isReply(created)) {
        take(created);
        co_return;
    }
    m_path = created.arguments().value(0).value<QDBusObjectPath>().path();
    m_owner = created.service();
    if (m_path.isEmpty())
        fail(PackageKitResult::End::Failed, saying({}));
}

QCoro::Task<> PackageKitTransaction::subscribe()
{
    const BusSignals owners = ownerChanges();
    const BusSignals packages = tellingOf(m_owner, m_path, u"Package"_s);
    const BusSignals errors = tellingOf(m_owner, m_path, u"ErrorCode"_s);
    const BusSignals ends = tellingOf(m_owner, m_path, u"Finished"_s);
    bool isHeard = co_await m_bus.listen(owners, this, SLOT(hearOwner(QDBusMessage)), timeLeft());
    if (isHeard)
        isHeard =
            co_await m_bus.listen(packages, this, SLOT(hearPackage(QDBusMessage)), timeLeft());
    if (isHeard)
        isHeard = co_await m_bus.listen(errors, this, SLOT(hearError(QDBusMessage)), timeLeft());
    if (isHeard)
        isHeard = co_await m_bus.listen(ends, this, SLOT(hearFinished(QDBusMessage)), timeLeft());
    if (!isHeard)
        fail(PackageKitResult::End::Failed, u"The system bus does not answer."_s);
}

QCoro::Task<> PackageKitTransaction::begin(PackageKitOrder order)
{
    // One that knows no such hints does without.
    const BusCall hints = hintsCall(m_owner, m_path);
    co_await m_bus.call(hints, timeLeft());
    const BusCall call = transactionCall(m_owner, m_path, order.method, order.arguments);
    const QDBusMessage begun = co_await m_bus.call(call, timeLeft());
    if (!isReply(begun))
        take(begun);
}

void PackageKitTransaction::hearPackage(const QDBusMessage& message)
{
    if (!isOurs(message) || m_result.packages.size() >= kMostPackages)
        return;
    const auto package = PackageId::in(message.arguments().value(1).toString());
    if (package && (m_name.isEmpty() || package->name == m_name))
        m_result.packages.append(*package);
}

void PackageKitTransaction::hearError(const QDBusMessage& message)
{
    if (!isOurs(message))
        return;
    if (message.arguments().value(0).toUInt() == kNotAuthorized)
        m_result.end = PackageKitResult::End::NotAllowed;
    m_result.problem = saying(message.arguments().value(1).toString());
}

void PackageKitTransaction::hearFinished(const QDBusMessage& message)
{
    if (!isOurs(message))
        return;
    if (message.arguments().value(0).toUInt() == kSuccess) {
        m_result.end = PackageKitResult::End::Done;
        m_result.problem.clear();
    } else if (m_result.problem.isEmpty()) {
        m_result.problem = saying({});
    }
    finish();
}

void PackageKitTransaction::hearOwner(const QDBusMessage& message)
{
    if (!m_owner.isEmpty() && message.service() == u"org.freedesktop.DBus" &&
        message.arguments().value(1).toString() == m_owner)
        fail(PackageKitResult::End::Failed, u"PackageKit ended before it had answered."_s);
}

/// Any program of this machine can send a signal to this one and have it look like another's, but
/// for who sent it.
bool PackageKitTransaction::isOurs(const QDBusMessage& message) const
{
    return !m_hasEnded && message.service() == m_owner && message.path() == m_path;
}

int PackageKitTransaction::timeLeft() const
{
    constexpr qint64 kMost = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp<qint64>(m_deadline.remainingTime(), 1, kMost));
}

void PackageKitTransaction::take(const QDBusMessage& refusal)
{
    using End = PackageKitResult::End;
    const auto kind = QDBusError(refusal).type();
    if (kind == QDBusError::ServiceUnknown)
        fail(End::NotThere, u"PackageKit is not installed."_s);
    else if (isSilence(refusal))
        fail(End::Failed, u"PackageKit did not come to an end in time."_s);
    else if (refusal.errorName().endsWith(u".RefusedByPolicy"_s))
        fail(End::NotAllowed, saying(refusal.errorMessage()));
    else
        fail(End::Failed, saying(refusal.errorMessage()));
}

void PackageKitTransaction::fail(PackageKitResult::End end, const QString& problem)
{
    if (m_hasEnded)
        return;
    m_result.end = end;
    m_result.problem = problem;
    finish();
}

void PackageKitTransaction::finish()
{
    m_hasEnded = true;
    m_limit.stop();
    Q_EMIT ended();
}

} // namespace mossbank
