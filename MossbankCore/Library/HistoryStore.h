// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Library/Database.h"
#include "MossbankCore/Library/ImageVault.h"
#include "MossbankCore/Library/Memory.h"
#include "MossbankCore/Support/Calendar.h"
#include "MossbankCore/Support/Files.h"
#include "MossbankCore/Support/SerialQueue.h"

#include <QFuture>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace mossbank {

/// The one owner of a library on disk: its database, its folder of pictures, and the sealing of
/// what goes into it. docs/formats.md tells what lies where.
///
/// One store writes; a second process may read the same library through `ReadingOnly` meanwhile.
/// Nobody waits for a lock: whoever meets one gets SQLite's busy error at once.
///
/// Threading: operations may be called from any thread. They run one at a time on the store's own
/// queue and hand back a future. Destroying the store finishes what was asked of it.
/// Errors: StoreError for what the store or SQLite finds wrong, FileError for what the file system
/// refuses; from the constructors at once, from operations through the future.
class HistoryStore {
public:
    /// Opens a library for writing, making it if there is none, upgrading one of an older schema.
    struct Writing {
        /// The library's folder.
        QString root;
        /// Seals new pictures. None: pictures lie as plain JPEG.
        std::optional<ImageVault> vault = {};
        /// What "the day" of a query is.
        CalendarSource calendar = Calendar::current;
    };

    /// Opens a library to look things up. Changes nothing in it, and so meets older schemas.
    struct ReadingOnly {
        QString root;
        CalendarSource calendar = Calendar::current;
    };

    /// Which screenshots to list.
    struct FetchRequest {
        /// Words that must all be in it, each as a word's beginning. Blank: no such condition.
        QString query = {};
        /// Some moment of the day that it must be of.
        std::optional<Date> day = {};
        /// The application name that it must have.
        std::optional<QString> app = {};
        /// At most so many; held to 1 to 86,400.
        int limit = 1;
        /// Whether to read the recognised text as well, by far the largest part.
        bool withText = false;
    };

    /// Throws when the folders or the database cannot be made ready; nothing stays open then.
    explicit HistoryStore(Writing options);
    /// Throws when there is no library or it cannot be opened.
    explicit HistoryStore(ReadingOnly options);
    ~HistoryStore();
    Q_DISABLE_COPY_MOVE(HistoryStore)

    const QString& root() const { return m_root; }
    /// The folder of pictures.
    QString images() const;
    /// The folder of the markers of saves under way.
    QString pending() const;

    /// Whether SQLite takes the words of deleted rows out of the index row by row.
    bool purgesDeletedTerms() const { return m_purgesDeletedTerms; }
    /// `user_version` of the database as it stood after opening.
    int schemaVersion() const { return m_schemaVersion; }

    /// What seals the pictures saved from now on; none: they lie as plain JPEG.
    QFuture<void> setVault(std::optional<ImageVault> vault);

    /// Saves one screenshot: its picture file and its row, both or neither.
    ///
    /// The row's `bytes` is the size of what was written, whatever `memory` says. Fails when the
    /// filename is invalid or taken, before anything is touched.
    QFuture<void> save(Memory memory, QByteArray jpeg);

    /// Screenshots newest first, the later saved first among equal times. A query that was typed
    /// but holds no word matches nothing.
    QFuture<QList<Memory>> fetch(FetchRequest request);

    /// How SQLite would run `sql`, for looking at.
    QFuture<QString> queryPlan(QString sql);

    /// What the user typed as an FTS5 expression: every word must match, as a word's beginning.
    /// Absent when it holds no word. No character typed is ever an operator.
    static std::optional<QString> searchExpression(QStringView typed);

    /// The spellings of a lower-case word with each "i" and "ı" taken as either. A Turkish reader
    /// may mean both, and the index tells them apart. The word alone when it has none of them or
    /// more than three.
    static QStringList dotlessVariants(const QString& word);

    /// Makes the database's files readable by the user alone, as far as that can be done.
    static void tightenDatabasePermissions(const QString& root);

private:
    /// Parts of a WHERE clause and the values for its marks.
    struct Conditions {
        QStringList clauses;
        QStringList values;
        QString whereSQL() const;
    };

    /// Throws when the database's file is no longer the one that is open: what is written into a
    /// removed file is lost without a word.
    void requireDatabaseInPlace() const;
    void saveNow(const Memory& memory, const QByteArray& jpeg);
    void insertRow(const Memory& memory, qsizetype bytesOnDisk);
    QList<Memory> fetchNow(const FetchRequest& request);

    /// What `query`, `day` and `app` ask of a row. Absent when nothing can match.
    std::optional<Conditions> conditions(const FetchRequest& request) const;
    /// The columns of a Memory that databases before version 3 do not have.
    QString titleColumns() const;
    static Memory readMemory(const Statement& row);

    QString m_root;
    std::optional<ImageVault> m_vault;
    CalendarSource m_calendar;
    Database m_db;
    /// Which file the database was when it was opened.
    Files::Identity m_databaseFile;
    bool m_purgesDeletedTerms = false;
    int m_schemaVersion = 0;
    /// Last, so that it has finished before anything above goes.
    SerialQueue m_queue;
};

} // namespace mossbank
