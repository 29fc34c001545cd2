// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Support/Files.h"

#include "MossbankCore/Support/Failure.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace mossbank {

namespace {

constexpr mode_t kFolderForUserAlone = 0700;
constexpr mode_t kFileForUserAlone = 0600;

[[noreturn]] void refuse(const QString& path)
{
    throw FileError(errno, path);
}

bool isFolder(const QByteArray& path)
{
    struct stat status = {};
    return ::stat(path.constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// A rename is on the disk only when the folder that holds the name is.
void syncFolder(const QString& path)
{
    const int folder =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        refuse(path);
    const int failed = ::fsync(folder);
    const int reason = errno;
    ::close(folder);
    // Some file systems cannot do this for folders; they have then done what they can.
    if (failed && reason != EINVAL)
        throw FileError(reason, path);
}

} // namespace

void Files::createFolder(const QString& path)
{
    const QByteArray name = QFile::encodeName(path);
    if (isFolder(name))
        return;
    const QString parent = QFileInfo(path).path();
    if (parent != path && !isFolder(QFile::encodeName(parent)))
        createFolder(parent);
    if (::mkdir(name.constData(), kFolderForUserAlone) != 0) {
        const int reason = errno;
        // Another process may have been quicker.
        if (reason != EEXIST || !isFolder(name))
            throw FileError(reason, path);
    }
}

void Files::createEmptyFile(const QString& path)
{
    const int file = ::open(QFile::encodeName(path).constData(),
                            O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kFileForUserAlone);
    if (file < 0)
        refuse(path);
    ::close(file);
}

void Files::writeAtomically(const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);
    const bool isWritten = file.open(QIODevice::WriteOnly) &&
                           file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) &&
                           file.write(bytes) == bytes.size() && file.commit();
    if (!isWritten)
        throw FileError(file.errorString(), path);
    syncFolder(QFileInfo(path).path());
}

void Files::removeFile(const QString& path)
{
    if (::unlink(QFile::encodeName(path).constData()) != 0 && errno != ENOENT)
        refuse(path);
}

} // namespace mossbank
