// SPDX-License-Identifier: Apache-2.0
#include "tests/House/SourceTree.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QProcess>

#include <algorithm>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

bool isOurs(const QString& path)
{
    return !path.startsWith(u'.') && !path.startsWith(u"build");
}

QStringList filesOfGit(const QString& folder)
{
    // New files are part of the house before they are committed.
    QProcess git;
    git.setWorkingDirectory(folder);
    git.start(u"git"_s,
              {u"ls-files"_s, u"-z"_s, u"--cached"_s, u"--others"_s, u"--exclude-standard"_s});
    if (!git.waitForFinished() || git.exitStatus() != QProcess::NormalExit || git.exitCode() != 0)
        return {};
    return QString::fromUtf8(git.readAllStandardOutput()).split(QChar(0), Qt::SkipEmptyParts);
}

QStringList filesThatStandThere(const QString& folder)
{
    QStringList files;
    QDirIterator walk(folder, QDir::Files, QDirIterator::Subdirectories);
    while (walk.hasNext())
        files += QDir(folder).relativeFilePath(walk.next());
    return files;
}

/// Those of ours whose name ends in one of these, sorted.
QStringList filesOf(const QString& folder, const QStringList& endings)
{
    const auto hasEnding = [&](const QString& path) {
        return std::ranges::any_of(endings,
                                   [&](const QString& ending) { return path.endsWith(ending); });
    };
    QStringList all = QFileInfo::exists(folder + u"/.git"_s) ? filesOfGit(folder) : QStringList();
    if (all.isEmpty())
        all = filesThatStandThere(folder);
    QStringList sources;
    std::ranges::copy_if(all, std::back_inserter(sources), [&](const QString& path) {
        return hasEnding(path) && isOurs(path) && QFileInfo::exists(folder + u'/' + path);
    });
    sources.sort();
    return sources;
}

} // namespace

QStringList sourceFiles(const QString& folder)
{
    return filesOf(folder, {u".h"_s, u".cpp"_s});
}

QStringList viewFiles(const QString& folder)
{
    return filesOf(folder, {u".qml"_s});
}

} // namespace mossbank
