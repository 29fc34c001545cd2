// SPDX-License-Identifier: Apache-2.0
//
// The libraries of older shapes that tests/fixtures/make-databases makes, and what is in them.
#pragma once

#include "MossbankCore/Library/Memory.h"
#include "tests/Core/Library/LibraryTesting.h"

#include <QDir>
#include <QFile>

namespace mossbank {

inline constexpr int kFirstVersionWithTitles = 3;

inline QString oldDatabase(int version)
{
    return QStringLiteral(MOSSBANK_SOURCE_DIR "/tests/fixtures/history-v%1.sqlite").arg(version);
}

/// Puts the database of that version where `folder` has its library, which has nothing else.
inline bool putOldDatabase(int version, const LibraryFolder& folder)
{
    return QDir().mkpath(folder.root()) && QFile::copy(oldDatabase(version), folder.database());
}

/// The rows of each of them, newest first. Titles and links are in those that have the columns.
inline QList<Memory> oldMemories(int version)
{
    using namespace Qt::StringLiterals;
    const QString editor = u"org.example.editor"_s;
    const QString browser = u"org.example.browser"_s;
    QList<Memory> memories = {
        {u"A4"_s,
         {1'700'090'000},
         u"Browser"_s,
         browser,
         u"next day's reading about lighthouses"_s,
         u"A4.jpg"_s,
         8000,
         u"Lighthouses"_s,
         u"https://example.org/lighthouses"_s},
        {u"A3"_s,
         {1'700'000'101},
         u"Editor"_s,
         editor,
         u"another screen of the same quarter of an hour"_s,
         u"A3.jpg"_s,
         4000,
         u"plan.md"_s,
         {}},
        {u"A2"_s,
         {1'700'000'100.5},
         u"Browser"_s,
         browser,
         u"invoice 2026-114 for İstanbul"_s,
         u"A2.jpg"_s,
         2000,
         u"Invoices"_s,
         u"https://example.org/invoices"_s},
        {u"A1"_s,
         {1'700'000'000.25},
         u"Editor"_s,
         editor,
         u"kırmızı kağıt üzerinde bir not\nsecond line"_s,
         u"A1.jpg"_s,
         1000,
         u"notlar.txt"_s,
         {}},
        {u"A5"_s,
         {-1.5},
         u"Clock"_s,
         {},
         u"a machine whose clock was wrong"_s,
         u"A5.jpg"_s,
         16'000,
         {},
         {}},
        {u"A6"_s,
         {-900},
         u"Clock"_s,
         {},
         u"and a quarter of an hour before that"_s,
         u"A6.jpg"_s,
         32'000,
         {},
         {}},
    };
    if (version < kFirstVersionWithTitles) {
        for (Memory& memory : memories) {
            memory.title.clear();
            memory.link.clear();
        }
    }
    return memories;
}

/// A word that only this row has, each row one, and the row's identity.
inline QList<std::pair<QString, QString>> tellingWords()
{
    using namespace Qt::StringLiterals;
    return {{u"kirmizi"_s, u"A1"_s}, {u"istanbul"_s, u"A2"_s}, {u"another"_s, u"A3"_s},
            {u"reading"_s, u"A4"_s}, {u"machine"_s, u"A5"_s},  {u"before"_s, u"A6"_s}};
}

} // namespace mossbank
