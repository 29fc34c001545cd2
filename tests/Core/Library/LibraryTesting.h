// SPDX-License-Identifier: Apache-2.0
//
// What the tests of the library share: samples, failures as text, and a look at the disk.
#pragma once

#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Library/StoreError.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

#include <cstdio>

namespace mossbank {

/// A folder that goes with the test, with the path of a library in it that is not yet there.
class LibraryFolder {
public:
    QString root() const { return m_folder.filePath(QStringLiteral("library")); }
    QString database() const { return root() + QStringLiteral("/history.sqlite"); }
    QString images() const { return root() + QStringLiteral("/Images"); }
    QString pending() const { return root() + QStringLiteral("/Pending"); }
    QString beside(const QString& name) const { return m_folder.filePath(name); }

private:
    QTemporaryDir m_folder;
};

inline Memory sampleMemory(const QString& id)
{
    return {.id = id,
            .timestamp = {1'700'000'000.25},
            .appName = QStringLiteral("Editor"),
            .bundleID = QStringLiteral("org.example.editor"),
            .text = QStringLiteral("words of ") + id,
            .filename = id + QStringLiteral(".jpg"),
            .bytes = 77,
            .title = QStringLiteral("notes.txt"),
            .link = QStringLiteral("https://example.org/")};
}

/// The message of the `Expected` that `action` throws; null when it throws nothing. What else it
/// throws fails the test.
template <typename Expected, typename Action>
QString failure(Action&& action)
{
    try {
        action();
    } catch (const Expected& thrown) {
        return thrown.message().isEmpty() ? QStringLiteral("(no words)") : thrown.message();
    }
    return {};
}

/// What `failure` hands back when all went well.
inline const QString kNoFailure;

/// What the file system refuses is told with its path behind it.
inline QString refusal(int errorNumber, const QString& path)
{
    return FileError(errorNumber, path).message();
}

/// The rights of a file or folder, -1 when there is none.
inline int mode(const QString& path)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return -1;
    return static_cast<int>(status.st_mode & 07777U);
}

/// Everything in a folder, hidden too, in order.
inline QStringList names(const QString& folder)
{
    return QDir(folder).entryList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

inline QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline bool putFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(bytes) == bytes.size() && file.flush();
}

/// Lays an empty file of a name that is no UTF-8, which Qt itself can neither make nor see.
inline bool putNamelessFile(const QString& folder, const QByteArray& name)
{
    std::FILE* const file = std::fopen((QFile::encodeName(folder) + '/' + name).constData(), "w");
    return file && std::fclose(file) == 0;
}

inline bool isNamelessFile(const QString& folder, const QByteArray& name)
{
    struct stat status = {};
    return ::lstat((QFile::encodeName(folder) + '/' + name).constData(), &status) == 0;
}

inline QStringList ids(const QList<Memory>& memories)
{
    QStringList list;
    for (const Memory& memory : memories)
        list.append(memory.id);
    return list;
}

} // namespace mossbank
