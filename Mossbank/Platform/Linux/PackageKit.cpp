// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/PackageKit.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

using End = PackageKitResult::End;

// PackageKit's sets of filters: a bit each.
constexpr quint64 kNoFilter = 1U << 1U;
constexpr quint64 kInstalled = 1U << 2U;

// Made in functions of their own: the compiler of Debian 12 loses lists within a `co_await`.

PackageKitOrder searchFor(const QString& file)
{
    return {u"SearchFiles"_s, {kInstalled, QStringList{file}}};
}

/// What is known anyway is not fetched again.
PackageKitOrder refresh()
{
    return {u"RefreshCache"_s, {false}};
}

PackageKitOrder updatesOf(const QString& name)
{
    return {u"GetUpdates"_s, {kNoFilter}, name};
}

PackageKitResult withoutBus()
{
    return {.end = End::Failed, .problem = u"The system bus does not answer."_s};
}

} // namespace

QString systemBusAddress()
{
    const QString told = qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS");
    return told.isEmpty() ? u"unix:path=/var/run/dbus/system_bus_socket"_s : told;
}

QCoro::Task<> PackageKit::findPackage(QString file, std::chrono::milliseconds limit)
{
    const auto self = shared_from_this();
    const PackageKitOrder order = searchFor(file);
    PackageKitResult result = co_await run(order, QDeadlineTimer(limit));
    m_bus.close();
    if (m_isStopped)
        co_return;
    if (result.packages.size() > 1)
        result.packages.resize(1);
    Q_EMIT found(result);
}

QCoro::Task<> PackageKit::check(PackageId package, std::chrono::milliseconds limit)
{
    const auto self = shared_from_this();
    const UpdateAnswer answer = co_await answerFor(package, QDeadlineTimer(limit));
    m_bus.close();
    if (!m_isStopped)
        Q_EMIT checked(answer);
}

void PackageKit::stop()
{
    m_isStopped = true;
    if (m_transaction)
        m_transaction->abandon();
    m_bus.close();
}

QCoro::Task<UpdateAnswer> PackageKit::answerFor(PackageId package, QDeadlineTimer deadline)
{
    const PackageKitOrder first = refresh();
    const PackageKitOrder second = updatesOf(package.name);
    const PackageKitResult refreshed = co_await run(first, deadline);
    // Without it, what is known already may tell all the same.
    const PackageKitResult told = co_await run(second, deadline);
    if (told.end != End::Done) {
        const bool isFirst = refreshed.end == End::Failed;
        co_return UpdateAnswer::failed(isFirst ? refreshed.problem : told.problem);
    }
    const auto newer = std::ranges::find_if(
        told.packages, [&](const PackageId& update) { return update.version != package.version; });
    if (newer != told.packages.end())
        co_return UpdateAnswer::newer(newer->version);
    // That there is nothing new in old lists is no answer, unless they are all there may be.
    if (refreshed.end == End::Failed)
        co_return UpdateAnswer::failed(refreshed.problem);
    co_return UpdateAnswer::newest(refreshed.end == End::Done);
}

QCoro::Task<PackageKitResult> PackageKit::run(PackageKitOrder order, QDeadlineTimer deadline)
{
    if (!m_bus.isOpen()) {
        const QString address = systemBusAddress();
        const auto left = static_cast<int>(std::max<qint64>(deadline.remainingTime(), 1));
        co_await m_bus.open(address, left);
    }
    if (!m_bus.isOpen() || m_isStopped)
        co_return withoutBus();
    m_transaction = std::make_unique<PackageKitTransaction>(m_bus);
    const PackageKitResult result = co_await m_transaction->run(order, deadline);
    co_return result;
}

} // namespace mossbank
