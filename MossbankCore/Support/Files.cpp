// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Support/Files.h"

#include "MossbankCore/Support/Failure.h"

#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#ifdef __linux__
#include <linux/magic.h>
#include <sys/vfs.h>
#endif

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <utility>

namespace mossbank {

namespace {

constexpr mode_t kFolderForUserAlone = 0700;
constexpr mode_t kFileForUserAlone = 0600;
/// What a file is called behind its name while it is being written; the system fills the letters
/// in.
constexpr char kMadeUp[] = ".XXXXXX";

[[noreturn]] void refuse(const QString& path)
{
    throw FileError(errno, path);
}

bool isFolder(const QByteArray& path)
{
    struct stat status = {};
    return ::stat(path.constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

QByteArray pathOf(const QString& folder, const QByteArray& name)
{
    return QFile::encodeName(folder) + '/' + name;
}

bool remove(const QByteArray& path)
{
    if (::unlink(path.constData()) == 0)
        return true;
    if (errno != ENOENT)
        refuse(QFile::decodeName(path));
    return false;
}

/// An open file or folder.
class Descriptor {
public:
    explicit Descriptor(int number)
        : m_number(number)
    {
    }
    ~Descriptor() { close(); }
    Q_DISABLE_COPY_MOVE(Descriptor)

    bool isOpen() const { return m_number >= 0; }
    int get() const { return m_number; }
    /// False when the system has bad news only now.
    bool close() { return !isOpen() || ::close(std::exchange(m_number, -1)) == 0; }

private:
    int m_number;
};

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

void writeAll(int file, const QByteArray& bytes, const QString& path)
{
    qsizetype written = 0;
    while (written < bytes.size()) {
        const ssize_t count = ::write(file, bytes.constData() + written,
                                      static_cast<std::size_t>(bytes.size() - written));
        if (count >= 0)
            written += count;
        else if (errno != EINTR)
            refuse(path);
    }
}

} // namespace

Files::Identity Files::identity(const QString& path)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    return {status.st_dev, status.st_ino};
}

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
    const Descriptor file(::open(QFile::encodeName(path).constData(),
                                 O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kFileForUserAlone));
    if (!file.isOpen())
        refuse(path);
}

void Files::writeAtomically(const QString& path, const QByteArray& bytes)
{
    const QByteArray finalName = QFile::encodeName(path);
    QByteArray name = finalName + kMadeUp;
    Descriptor file(::mkostemp(name.data(), O_CLOEXEC));
    if (!file.isOpen())
        refuse(path);
    auto nameGoes = qScopeGuard([&name] { ::unlink(name.constData()); });
    writeAll(file.get(), bytes, path);
    // A full disk or a quota may show only here and at the closing. QSaveFile lets that pass.
    if (::fsync(file.get()) != 0 || !file.close() ||
        ::rename(name.constData(), finalName.constData()) != 0)
        refuse(path);
    nameGoes.dismiss();
    // A rename is on the disk only when the folder that holds the name is.
    syncFolder(QFileInfo(path).path());
}

std::optional<QString> Files::beingWritten(const QString& name)
{
    const qsizetype base = name.size() - static_cast<qsizetype>(sizeof(kMadeUp)) + 1;
    if (base <= 0 || name.at(base) != u'.')
        return std::nullopt;
    const auto isMadeUp = [](QChar letter) {
        return letter.unicode() < 0x80 && letter.isLetterOrNumber();
    };
    const QStringView end = QStringView(name).mid(base + 1);
    if (!std::all_of(end.cbegin(), end.cend(), isMadeUp))
        return std::nullopt;
    return name.first(base);
}

QByteArrayList Files::filesIn(const QString& folder)
{
    const std::unique_ptr<DIR, CloseFolder> open(::opendir(QFile::encodeName(folder).constData()));
    if (!open && errno == ENOENT)
        return {};
    if (!open)
        refuse(folder);
    QByteArrayList names;
    errno = 0;
    while (const dirent* entry = ::readdir(open.get())) {
        const char* const name = static_cast<const char*>(entry->d_name);
        struct stat status = {};
        const bool isKnown =
            ::fstatat(::dirfd(open.get()), name, &status, AT_SYMLINK_NOFOLLOW) == 0;
        if (isKnown && S_ISREG(status.st_mode))
            names.append(name);
        errno = 0;
    }
    if (errno != 0)
        refuse(folder);
    return names;
}

std::optional<Date> Files::modified(const QString& folder, const QByteArray& name)
{
    struct stat status = {};
    if (::stat(pathOf(folder, name).constData(), &status) != 0)
        return std::nullopt;
    constexpr double kNanosecond = 1e-9;
    return Date{static_cast<double>(status.st_mtim.tv_sec) +
                static_cast<double>(status.st_mtim.tv_nsec) * kNanosecond};
}

bool Files::removeFile(const QString& path)
{
    return remove(QFile::encodeName(path));
}

bool Files::removeFile(const QString& folder, const QByteArray& name)
{
    return remove(pathOf(folder, name));
}

bool Files::syncsInOrder(const QString& path)
{
#ifdef __linux__
    // These have one journal for all names, and write it in order. Others, Btrfs for one, put the
    // changes to what is synced on the disk and leave the rest for later.
    struct statfs status = {};
    return ::statfs(QFile::encodeName(path).constData(), &status) == 0 &&
           (status.f_type == EXT4_SUPER_MAGIC || status.f_type == XFS_SUPER_MAGIC);
#else
    return false;
#endif
}

void Files::syncFolder(const QString& path)
{
    const Descriptor folder(
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isOpen())
        refuse(path);
    // Some file systems cannot do this for folders; they have then done what they can.
    if (::fsync(folder.get()) != 0 && errno != EINVAL)
        refuse(path);
}

} // namespace mossbank
