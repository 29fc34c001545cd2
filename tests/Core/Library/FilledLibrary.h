// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/Core/Library/LibraryTesting.h"
#include "tests/Core/Library/RawSql.h"
#include "tests/Core/Library/Summary.h"

#include <functional>

namespace mossbank {

/// The end of the word below, as it lies on the disk wherever the word does: the index keeps of a
/// word only what it does not share with the one before it.
inline QByteArray traceOf(int number)
{
    return QStringLiteral("zq%1").arg(number, 6, 10, QChar(u'0')).toLatin1();
}

/// A word that is in the text of screenshot `number` and in no other's, nor part of one. Those of
/// neighbours begin differently.
inline QString ownWord(int number)
{
    constexpr int kLetters = 26;
    constexpr int kPrime = 7919;
    QString word;
    for (int rest = number * kPrime; word.size() < 3; rest /= kLetters)
        word += QChar(u'a' + rest % kLetters);
    return word + QString::fromLatin1(traceOf(number));
}

inline QString pictureOf(int number)
{
    return QStringLiteral("%1.jpg").arg(number);
}

/// Puts `count` screenshots past the store into its library, quicker than saving them one by one.
/// They are numbered from 1, were taken that many seconds after 1970, and have a picture each.
inline void fill(const LibraryFolder& folder, int count,
                 const std::function<QString(int)>& textOf = ownWord)
{
    RawSql sql(folder.database());
    // As the store does, or what the index writes anew meanwhile would leave its remains.
    sql.run(QStringLiteral("PRAGMA secure_delete=ON; BEGIN"));
    for (int number = 1; number <= count; ++number) {
        const QString id = QString::number(number);
        const QByteArray jpeg = "jpeg of " + id.toLatin1();
        sql.rows(QStringLiteral("INSERT INTO memories VALUES "
                                "(?,?,'Editor','org.example.editor',?,?,?,'notes','')"),
                 {id, id, textOf(number), pictureOf(number), QString::number(jpeg.size())});
        putFile(folder.images() + u'/' + pictureOf(number), jpeg);
    }
    sql.run(QStringLiteral("COMMIT"));
}

/// What in the library does not agree with the rest: the database with itself, the index with the
/// rows, the summary with a recount. Empty when all is well.
inline QString disagreement(const LibraryFolder& folder)
{
    try {
        RawSql sql(folder.database());
        const QString integrity = sql.value(QStringLiteral("PRAGMA integrity_check"));
        if (integrity != QStringLiteral("ok"))
            return integrity;
        sql.run(QStringLiteral(
            "INSERT INTO memory_search(memory_search, rank) VALUES('integrity-check', 1)"));
        const QStringList kept = summary(sql);
        const QStringList counted = recount(sql);
        if (kept != counted)
            return QStringLiteral("summary %1, recount %2")
                .arg(kept.join(u' '), counted.join(u' '));
    } catch (const std::runtime_error& error) {
        return QString::fromUtf8(error.what());
    }
    return {};
}

} // namespace mossbank
