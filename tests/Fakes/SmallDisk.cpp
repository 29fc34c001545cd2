// SPDX-License-Identifier: Apache-2.0
#include "tests/Fakes/SmallDisk.h"

#include <QFile>

#include <sched.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// What kept this process from mounts of its own; empty when nothing did.
QString g_noMounts;

QString words(const char* call)
{
    return u"%1: %2"_s.arg(QLatin1String(call), QString::fromLocal8Bit(std::strerror(errno)));
}

bool putText(const QString& path, const QByteArray& text)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush();
}

/// A user who is not root needs a name space of users as well.
bool enterOwnNameSpaces()
{
    const QByteArray user = QByteArray::number(getuid());
    const QByteArray group = QByteArray::number(getgid());
    return ::unshare(CLONE_NEWNS) == 0 || (::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 &&
                                           putText(u"/proc/self/setgroups"_s, "deny") &&
                                           putText(u"/proc/self/uid_map"_s, "0 " + user + " 1") &&
                                           putText(u"/proc/self/gid_map"_s, "0 " + group + " 1"));
}

} // namespace

void SmallDisk::allow()
{
    // A process with threads may not enter one. Nothing mounted here is seen outside.
    if (!enterOwnNameSpaces())
        g_noMounts = words("unshare");
    else if (::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        g_noMounts = words("mount");
}

SmallDisk::SmallDisk(const QString& folder, const QByteArray& options)
    : m_folder(folder)
{
    if (!g_noMounts.isEmpty()) {
        m_problem = u"This test mounts a small disk and was not let: %1. Run it as root, or where "
                    "name spaces of users are allowed."_s.arg(g_noMounts);
        return;
    }
    if (::mount("mossbank-test", QFile::encodeName(folder).constData(), "tmpfs", 0,
                QByteArray("mode=0700," + options).constData()) != 0)
        m_problem = words("mount");
}

SmallDisk::~SmallDisk()
{
    if (m_problem.isEmpty())
        ::umount2(QFile::encodeName(m_folder).constData(), MNT_DETACH);
}

qsizetype SmallDisk::free() const
{
    struct statvfs status = {};
    ::statvfs(QFile::encodeName(m_folder).constData(), &status);
    return static_cast<qsizetype>(status.f_bavail * status.f_bsize);
}

bool SmallDisk::leave(qsizetype bytes) const
{
    QFile file(filler());
    const QByteArray filling(free() - bytes, 'f');
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(filling) == filling.size() && file.flush();
}

bool SmallDisk::makeRoom() const
{
    return QFile::remove(filler());
}

QString SmallDisk::filler() const
{
    return m_folder + u"/filler"_s;
}

} // namespace mossbank
