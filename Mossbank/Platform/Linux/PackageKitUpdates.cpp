// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/PackageKitUpdates.h"

#include "Mossbank/Platform/Linux/PackageKit.h"
#include "MossbankCore/Support/Files.h"

#include <QDir>

#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

QString isFromNoPackage()
{
    return u"This copy of Mossbank is not from a package of this system, which could tell of newer "
           "versions."_s;
}

} // namespace

bool isAnotherThanRuns(const QString& executable)
{
    const Files::Identity there = Files::identity(executable);
    return there != Files::Identity() && there != Files::identity(u"/proc/self/exe"_s);
}

bool mayBeFromPackage(const QString& executable)
{
    const QString path = QDir::cleanPath(executable);
    return path.startsWith(u"/usr/"_s) && !path.startsWith(u"/usr/local/"_s);
}

PackageKitUpdates::PackageKitUpdates(QString executable, const Limits& limits)
    : m_executable(std::move(executable))
    , m_limits(limits)
    , m_packageKit(std::make_shared<PackageKit>())
{
    connect(m_packageKit.get(), &PackageKit::found, this, &PackageKitUpdates::take);
    connect(m_packageKit.get(), &PackageKit::checked, this, &PackageKitUpdates::finish);
    if (mayBeFromPackage(m_executable))
        return;
    m_reason = isFromNoPackage();
    m_isDecided = true;
}

PackageKitUpdates::~PackageKitUpdates()
{
    m_packageKit->disconnect(this);
    m_packageKit->stop();
}

Availability PackageKitUpdates::availability() const
{
    return m_reason.isEmpty() ? Availability() : Availability::missing(m_reason);
}

bool PackageKitUpdates::canCheckForUpdates()
{
    if (!m_isDecided)
        findPackage();
    return m_package.has_value() && !m_isChecking;
}

void PackageKitUpdates::checkForUpdates()
{
    if (m_isChecking)
        return;
    m_isChecking = true;
    if (m_package) {
        m_packageKit->check(*m_package, m_limits.check);
        Q_EMIT canCheckForUpdatesChanged();
        return;
    }
    const QString reason =
        m_reason.isEmpty() ? u"PackageKit has yet to say where Mossbank is from."_s : m_reason;
    QMetaObject::invokeMethod(
        this, [this, reason] { finish(UpdateAnswer::failed(reason)); }, Qt::QueuedConnection);
}

void PackageKitUpdates::findPackage()
{
    if (m_isAsking || !m_nextQuestion.hasExpired())
        return;
    m_isAsking = true;
    m_packageKit->findPackage(m_executable, m_limits.package);
}

void PackageKitUpdates::take(const PackageKitResult& result)
{
    m_isAsking = false;
    m_nextQuestion = QDeadlineTimer(m_limits.again);
    const bool isDone = result.end == PackageKitResult::End::Done;
    m_isDecided = isDone;
    m_reason = isDone ? QString() : result.problem;
    if (isDone && result.packages.isEmpty())
        m_reason = isFromNoPackage();
    if (!isDone || result.packages.isEmpty())
        return;
    m_package = result.packages.first();
    Q_EMIT canCheckForUpdatesChanged();
}

void PackageKitUpdates::finish(const UpdateAnswer& answer)
{
    m_isChecking = false;
    if (m_package)
        Q_EMIT canCheckForUpdatesChanged();
    // The package is the newest then, but not what runs.
    const bool isReplaced =
        answer.kind == UpdateAnswer::Kind::Newest && isAnotherThanRuns(m_executable);
    Q_EMIT checked(isReplaced ? UpdateAnswer::installed() : answer);
}

} // namespace mossbank
