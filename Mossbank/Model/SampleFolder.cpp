// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/SampleFolder.h"

#include "MossbankCore/Support/Failure.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <optional>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// The first, and what older versions wrote.
const std::array<QString, 2> kPrefixes = {u"MossbankDemo-"_s, u"BurrowDemo-"_s};

/// Absent for what is no number of a process.
std::optional<pid_t> processOf(const QString& name)
{
    for (const QString& prefix : kPrefixes) {
        if (!name.startsWith(prefix))
            continue;
        const QString tail = name.mid(prefix.size());
        const bool isDigits =
            std::ranges::all_of(tail, [](QChar sign) { return sign >= u'0' && sign <= u'9'; });
        bool isNumber = false;
        const int number = tail.toInt(&isNumber);
        if (isDigits && isNumber)
            return number;
    }
    return std::nullopt;
}

bool isDead(pid_t process)
{
    return ::kill(process, 0) != 0 && errno == ESRCH;
}

void remove(const QString& path)
{
    struct stat entry = {};
    if (::lstat(QFile::encodeName(path).constData(), &entry) != 0 || entry.st_uid != ::geteuid())
        return;
    if (S_ISDIR(entry.st_mode))
        QDir(path).removeRecursively();
    else
        QFile::remove(path);
}

} // namespace

SampleFolder::SampleFolder(const QString& temporary)
    : m_path(QDir(temporary).absoluteFilePath(kPrefixes.front() +
                                              QString::number(QCoreApplication::applicationPid())))
{
    // Numbers of processes come again.
    remove(m_path);
    constexpr mode_t kForUserAlone = 0700;
    if (::mkdir(QFile::encodeName(m_path).constData(), kForUserAlone) != 0)
        throw FileError(errno, m_path);
    tidy(m_path);
}

SampleFolder::~SampleFolder()
{
    remove(m_path);
}

void SampleFolder::tidy(const QString& own)
{
    const QFileInfo kept(own);
    const QDir folder = kept.absoluteDir();
    // Hidden ones do not begin so; links that lead nowhere count as system files.
    const QStringList names =
        folder.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    for (const QString& name : names) {
        const auto process = name == kept.fileName() ? std::nullopt : processOf(name);
        if (process && isDead(*process))
            remove(folder.filePath(name));
    }
}

} // namespace mossbank
