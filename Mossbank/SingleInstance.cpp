// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/SingleInstance.h"

#include "Mossbank/Model/Texts.h"
#include "MossbankCore/Support/Failure.h"
#include "MossbankCore/Support/Files.h"

#include <QSysInfo>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

QString lockIn(const QString& root)
{
    try {
        Files::createFolder(root);
    } catch (const FileError&) {
        // Locking fails as well then.
    }
    return root + u"/mossbank.lock"_s;
}

} // namespace

SingleInstance::SingleInstance(const QString& root)
    : m_lock(lockIn(root))
{
    // Held for days: only the death of its process makes a lock stale, never its age.
    m_lock.setStaleLockTime(0);
}

bool SingleInstance::isFirst()
{
    return m_lock.tryLock() || m_lock.error() != QLockFile::LockFailedError;
}

QString SingleInstance::whoIsFirst() const
{
    qint64 process = 0;
    QString host;
    QString application;
    if (!m_lock.getLockInfo(&process, &host, &application))
        return localized("Mossbank is already running.");
    if (host != QSysInfo::machineHostName())
        return localized("Mossbank is already running on %1 (process %2).")
            .arg(host, QString::number(process));
    return localized("Mossbank is already running (process %1).").arg(process);
}

} // namespace mossbank
