// SPDX-License-Identifier: Apache-2.0
//
// What holds of a library whatever happened to it: after a crash, on a disk that went bad. Its
// screenshots are made here, so that each can be known again by any part of it, and are numbered.
#pragma once

#include "tests/Core/Library/FilledLibrary.h"

#include <QByteArrayMatcher>
#include <QDirIterator>
#include <QRandomGenerator>
#include <QSet>

#include <algorithm>
#include <utility>

namespace mossbank {

/// A picture of which every part of 80 bytes can be told for one.
inline QByteArray tellingPicture(int number)
{
    static const QByteArray kToken = QByteArray::fromHex("9b1fd37ac2046e85f1573bd8a60c92e4");
    constexpr int kNoise = 48;
    QRandomGenerator random(static_cast<quint32>(number));
    QByteArray picture = QByteArray::fromHex("ffd8ffe0");
    for (int blocks = 8 + number * 7 % 60; blocks > 0; --blocks) {
        picture += kToken;
        for (int byte = 0; byte < kNoise; ++byte)
            picture += static_cast<char>(random.bounded(256));
    }
    return picture;
}

/// The screenshot of that number, taken so many seconds after 1970.
inline Memory tellingMemory(int number)
{
    Memory memory = sampleMemory(QString::number(number));
    memory.timestamp = {static_cast<double>(number)};
    memory.text = QStringLiteral("the moss %1 by the river").arg(ownWord(number));
    memory.filename = pictureOf(number);
    return memory;
}

/// Every file of a library and what is in it, by its path below the library's folder.
inline QMap<QString, QByteArray> filesOnDisk(const LibraryFolder& folder)
{
    QMap<QString, QByteArray> all;
    QDirIterator files(folder.root(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        all.insert(path.mid(folder.root().size() + 1), contents(path));
    }
    return all;
}

/// The files that hold a part of a picture as it was before it was sealed.
inline QStringList plainPictures(const QMap<QString, QByteArray>& files)
{
    // Of the one picture after its first four bytes.
    static const QByteArrayMatcher kToken(tellingPicture(0).mid(4, 16));
    QStringList found;
    for (auto file = files.cbegin(); file != files.cend(); ++file) {
        if (kToken.indexIn(*file) >= 0)
            found.append(file.key());
    }
    return found;
}

/// The numbers of the screenshots of whose words something stands in any of the files.
inline QSet<int> numbersOnDisk(const QMap<QString, QByteArray>& files)
{
    constexpr int kDigits = 6;
    static const QByteArrayMatcher kBeginning(traceOf(0).chopped(kDigits));
    QSet<int> numbers;
    for (const QByteArray& file : files) {
        for (qsizetype at = kBeginning.indexIn(file); at >= 0;
             at = kBeginning.indexIn(file, at + 1)) {
            const QByteArray digits = file.mid(at + kBeginning.pattern().size(), kDigits);
            // Sealed pictures are noise, in which two letters and a digit come up by chance. A
            // number would be read as far as it goes, so all of it has to be there.
            const auto isDigit = [](char byte) {
                return byte >= '0' && byte <= '9';
            };
            if (digits.size() == kDigits && std::ranges::all_of(digits, isDigit))
                numbers.insert(digits.toInt());
        }
    }
    return numbers;
}

/// The numbers of a library's rows.
inline QSet<int> rowsOf(HistoryStore& store)
{
    constexpr int kEveryRow = 86'400;
    QSet<int> numbers;
    for (const Memory& memory : store.fetch({.limit = kEveryRow}).result())
        numbers.insert(memory.id.toInt());
    return numbers;
}

inline QString listed(const QSet<int>& numbers)
{
    QList<int> sorted(numbers.cbegin(), numbers.cend());
    std::sort(sorted.begin(), sorted.end());
    QStringList texts;
    for (const int number : std::as_const(sorted))
        texts.append(QString::number(number));
    return texts.join(u' ');
}

/// What may be otherwise than promised.
struct Allowed {
    /// Rows whose pictures may be gone.
    QSet<int> mayLackPictures = {};
    /// Whether pictures may lie as they are.
    bool mayBePlain = false;
};

/// What of a settled library is not as it was promised: index, summary and rows agree, each row
/// has its picture, sealed so that it opens, there is nothing else in the folders, and nowhere on
/// the disk is a word of a screenshot that has no row. Empty when all is well.
inline QString brokenPromise(const LibraryFolder& folder, HistoryStore& store,
                             const Allowed& allowed = {})
{
    if (const QString said = disagreement(folder); !said.isEmpty())
        return said;
    const QSet<int> rows = rowsOf(store);
    QStringList left = names(folder.images());
    for (const int number : rows) {
        const QString name = pictureOf(number);
        if (!left.removeOne(name)) {
            if (!allowed.mayLackPictures.contains(number))
                return QStringLiteral("no picture %1").arg(number);
        } else if (store.picture(name).result() != tellingPicture(number)) {
            return QStringLiteral("another picture %1").arg(number);
        }
    }
    if (!left.isEmpty())
        return QStringLiteral("left in Images: %1").arg(left.join(u' '));
    if (const QStringList markers = names(folder.pending()); !markers.isEmpty())
        return QStringLiteral("left in Pending: %1").arg(markers.join(u' '));
    const auto files = filesOnDisk(folder);
    if (const QStringList plain = plainPictures(files); !allowed.mayBePlain && !plain.isEmpty())
        return QStringLiteral("plain pictures in %1").arg(plain.join(u' '));
    if (const QSet<int> lost = numbersOnDisk(files) - rows; !lost.isEmpty())
        return QStringLiteral("words of %1 are on the disk").arg(listed(lost));
    return {};
}

} // namespace mossbank
