// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Library/Memory.h"

#include <QRandomGenerator>
#include <QStringList>

#include <functional>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace mossbank {

/// Screenshots as a person's year would have them: a vocabulary of 60,000 words of which few come
/// again and again and most seldom (Zipf's law), 300 words each, one every 30 seconds. The same
/// ones in each run.
class SyntheticScreenshots {
public:
    static constexpr double kFirstTime = 1'700'000'000;
    static constexpr double kSecondsBetween = 30;
    static constexpr qsizetype kPictureBytes = 300 * 1024;

    SyntheticScreenshots();

    /// The next one, under that number.
    Memory next(int number);
    QByteArray noise(qsizetype size);

    /// A word that stands on about this part of all screenshots, and that no other begins with.
    /// `letters`: how many it has; then it may stand on fewer. 0: as many as it happens to have.
    QString wordOn(double part, qsizetype letters = 0) const;

    /// The first moment of the first day after the screenshot of that number.
    static Date dayAfter(int number);

private:
    QString words(int count);
    bool beginsAnother(const QString& word) const;

    QRandomGenerator m_random{20'260'301};
    QStringList m_vocabulary; // the most frequent first
    QStringList m_sorted;
    std::vector<double> m_upTo; // the chance of a word or of one before it
};

/// A database with nothing between it and SQLite.
///
/// Errors: a Failure with SQLite's message.
class BareDatabase {
public:
    explicit BareDatabase(const QString& path);
    ~BareDatabase();
    Q_DISABLE_COPY_MOVE(BareDatabase)

    void run(const QString& sql);
    /// Steps through every row and reads every column. The number of rows.
    qsizetype read(const QString& sql, const QStringList& values);
    /// The same into the structs of a list. `sql` names all columns, in the order of the table.
    QList<Memory> readMemories(const QString& sql, const QStringList& values);
    void insert(const Memory& memory);
    /// The least that saving takes: the picture written to the library at `root` and synced, and
    /// the row.
    void save(const QString& root, const Memory& memory, const QByteArray& picture);

private:
    sqlite3_stmt* prepare(const QString& sql);
    /// Binds the values, does `take` with each row, and lets go of the statement.
    void each(const QString& sql, const QStringList& values,
              const std::function<void(sqlite3_stmt*)>& take);
    void check(int result) const;

    sqlite3* m_connection = nullptr;
};

/// Makes a library of so many screenshots at `root`, without their pictures. The last `onLastDay`
/// of them lie evenly spread over the day after all others.
void makeLibrary(const QString& root, int rows, SyntheticScreenshots& screenshots,
                 int onLastDay = 0);

/// The same in a folder for such libraries, where an earlier run may have left it. Where it lies.
QString keptLibrary(const QString& folder, int rows, SyntheticScreenshots& screenshots,
                    int onLastDay = 0);

/// Puts a copy in place of what is at `to`. Throws a FileError.
void copyLibrary(const QString& from, const QString& to);

} // namespace mossbank
