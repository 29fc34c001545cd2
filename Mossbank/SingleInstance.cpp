// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/SingleInstance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QStandardPaths>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// Outside the library, which may lie on a disk without locks, and the same for every way of
/// writing the library's path.
QString lockPath(const QString& root)
{
    const QString canonical = QDir(root).canonicalPath();
    const QByteArray name = (canonical.isEmpty() ? QDir::cleanPath(root) : canonical).toUtf8();
    const QByteArray hash =
        QCryptographicHash::hash(name, QCryptographicHash::Sha256).toHex().first(16);
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + u"/mossbank-"_s +
           QString::fromLatin1(hash) + u".lock"_s;
}

} // namespace

SingleInstance::SingleInstance(const QString& root)
    : m_lock(lockPath(root))
{
    // Held for days: only the death of its process makes a lock stale, never its age.
    m_lock.setStaleLockTime(0);
}

bool SingleInstance::isFirst()
{
    return m_lock.tryLock();
}

qint64 SingleInstance::otherProcess() const
{
    qint64 process = 0;
    QString host;
    QString application;
    return m_lock.getLockInfo(&process, &host, &application) ? process : 0;
}

} // namespace mossbank
