// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/SingleInstance.h"

#include "Mossbank/Model/Texts.h"
#include "MossbankCore/Support/Failure.h"
#include "MossbankCore/Support/Files.h"

#include <QByteArrayList>
#include <QCoreApplication>
#include <QFile>
#include <QSysInfo>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

constexpr mode_t kForUserAlone = 0600;

/// Neither waits for what is no ordinary file nor follows a link to somebody else's.
int openOf(const QString& path, int flags)
{
    return ::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC | O_NONBLOCK,
                  kForUserAlone);
}

void close(int& file)
{
    if (file >= 0)
        ::close(std::exchange(file, -1));
}

QByteArray beginningOf(const QString& path)
{
    int file = openOf(path, O_RDONLY | O_NOFOLLOW);
    std::array<char, 1024> bytes = {};
    const ssize_t count = file < 0 ? 0 : ::read(file, bytes.data(), bytes.size());
    close(file);
    return {bytes.data(), count > 0 ? static_cast<qsizetype>(count) : 0};
}

bool isAlive(qint64 process)
{
    return ::kill(static_cast<pid_t>(process), 0) == 0 || errno == EPERM;
}

} // namespace

SingleInstance::SingleInstance(const QString& root)
    : m_path(root + u"/mossbank.lock"_s)
{
    try {
        Files::createFolder(root);
    } catch (const FileError& failure) {
        m_problem = failure.message(); // unless there is something in its place
    }
    take(root);
    if (m_isTaken) {
        close(m_file);
        close(m_folder);
    }
    if (m_isTaken || m_folder >= 0 || m_file >= 0)
        m_problem.clear();
    else
        m_problem = localized("History is unavailable: %1").arg(m_problem);
}

SingleInstance::~SingleInstance()
{
    // While it is locked: whoever has opened it meanwhile sees that it is gone, and makes a new
    // one.
    if (m_file >= 0 && isStillNamed())
        ::unlink(QFile::encodeName(m_path).constData());
    close(m_file);
    close(m_folder);
}

void SingleInstance::take(const QString& root)
{
    m_folder = openOf(root, O_RDONLY);
    const Outcome folder = lock(m_folder);
    m_isTaken = folder == Outcome::Taken;
    if (folder == Outcome::Impossible) {
        if (m_problem.isEmpty())
            m_problem = FileError(errno, root).message();
        close(m_folder);
    }
    if (!m_isTaken)
        takeFile();
}

void SingleInstance::takeFile()
{
    // The first may end and take its file away between opening and locking.
    for (int tries = 0; tries < 100; ++tries) {
        m_file = openOf(m_path, O_RDWR | O_CREAT | O_NOFOLLOW);
        const Outcome file = lock(m_file);
        m_isTaken = file == Outcome::Taken;
        if (m_isTaken)
            return;
        if (file == Outcome::Held && isStillNamed()) {
            sign();
            return;
        }
        close(m_file);
        if (file == Outcome::Impossible)
            return;
    }
}

SingleInstance::Outcome SingleInstance::lock(int file)
{
    if (file < 0)
        return Outcome::Impossible;
    while (::flock(file, LOCK_EX | LOCK_NB) != 0) {
        // Some file systems of the network call it the one, some the other.
        if (errno == EWOULDBLOCK || errno == EACCES)
            return Outcome::Taken;
        if (errno != EINTR)
            return Outcome::Impossible;
    }
    return Outcome::Held;
}

bool SingleInstance::isStillNamed() const
{
    struct stat status = {};
    return ::fstat(m_file, &status) == 0 &&
           Files::identity(m_path) == Files::Identity{status.st_dev, status.st_ino};
}

/// Writes down whose the library is now. The locks alone decide; this tells others whom to name and
/// to call.
void SingleInstance::sign() const
{
    const QByteArray text = QByteArray::number(QCoreApplication::applicationPid()) + '\n' +
                            QSysInfo::machineHostName().toUtf8() + '\n';
    [[maybe_unused]] const bool isWritten =
        ::ftruncate(m_file, 0) == 0 &&
        ::write(m_file, text.constData(), static_cast<std::size_t>(text.size())) >= 0 &&
        ::fdatasync(m_file) == 0; // another computer sees it only then
}

bool SingleInstance::Signature::isOfThisComputer() const
{
    return host == QSysInfo::machineHostName();
}

SingleInstance::Signature SingleInstance::signature() const
{
    const QByteArrayList lines = beginningOf(m_path).split('\n');
    const Signature signature = {lines.first().toLongLong(), QString::fromUtf8(lines.value(1))};
    const bool isOne = signature.process > 0 && !signature.host.isEmpty();
    // What a killed one has left, before who came after it wrote its own.
    const bool isLeftOver = signature.isOfThisComputer() && !isAlive(signature.process);
    return isOne && !isLeftOver ? signature : Signature();
}

std::optional<qint64> SingleInstance::firstProcess() const
{
    const Signature first = signature();
    if (first.process == 0 || !first.isOfThisComputer())
        return std::nullopt;
    return first.process;
}

QString SingleInstance::whoIsFirst() const
{
    const Signature first = signature();
    if (first.process == 0)
        return localized("Mossbank is already running.");
    if (!first.isOfThisComputer())
        return localized("Mossbank is already running on %1 (process %2).")
            .arg(first.host, QString::number(first.process));
    return localized("Mossbank is already running (process %1).").arg(first.process);
}

} // namespace mossbank
