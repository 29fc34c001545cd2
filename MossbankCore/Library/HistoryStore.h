// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Library/Database.h"
#include "MossbankCore/Library/HeldRows.h"
#include "MossbankCore/Library/ImageVault.h"
#include "MossbankCore/Library/LibraryStats.h"
#include "MossbankCore/Library/Memory.h"
#include "MossbankCore/Meaning/Vector.h"
#include "MossbankCore/Support/Calendar.h"
#include "MossbankCore/Support/Files.h"
#include "MossbankCore/Support/SerialQueue.h"

#include <QByteArrayList>
#include <QFuture>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>
#include <utility>

namespace mossbank {

/// The one owner of a library on disk: its database, its folder of pictures, and the sealing of
/// what goes into it. docs/formats.md tells what lies where.
///
/// One store writes; a second process may read the same library through `ReadingOnly` meanwhile.
/// Nobody waits for a lock: whoever meets one gets SQLite's busy error at once.
///
/// Threading: operations may be called from any thread. They run one at a time on the store's own
/// queue and hand back a future. Destroying the store finishes what was asked of it. Cancelling
/// the future of a search takes it off the queue, at once also when it is running.
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
        /// What the asker holds already, as an earlier fetch with text gave it. The answer shares
        /// what it has of it, which is neither made into a text nor held a second time.
        QList<Memory> held = {};
    };

    /// Which screenshots to look for the answer to a question in.
    struct CandidatesRequest {
        /// Any of its words may be in them.
        QString question = {};
        std::optional<Date> day = {};
        std::optional<QString> app = {};
        /// At most so many; held to 1 to 200.
        int limit = 1;
    };

    /// Which screenshots to count by day.
    struct DayCountsRequest {
        QString query = {};
        std::optional<QString> app = {};
    };

    /// What a model is to read of a screenshot.
    struct Unread {
        QString id;
        QString text;
        QString title;
        friend bool operator==(const Unread&, const Unread&) = default;
    };

    /// How far a model has come.
    struct EmbeddingProgress {
        qsizetype embedded = 0;
        qsizetype total = 0;
        friend bool operator==(EmbeddingProgress, EmbeddingProgress) = default;
    };

    /// What a model made of a screenshot.
    struct Embedding {
        QString id;
        Vector vector;
        friend bool operator==(const Embedding&, const Embedding&) = default;
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

    /// The screenshots that answer a question best, best first.
    QFuture<QList<Memory>> candidates(CandidatesRequest request);

    /// How many screenshots match, by the first moment of each day that has some.
    QFuture<QMap<Date, qsizetype>> dayCounts(DayCountsRequest request);

    /// Those of the first 500 of `ids` that there are, in the order of `ids`.
    QFuture<QList<Memory>> memories(QStringList ids);

    /// The summary of the library, at a price that grows with the hours recorded and not with the
    /// screenshots. One counts for the day that the quarter of an hour it was taken in begins in.
    QFuture<LibraryStats> stats();

    /// The picture of that name, opened. Absent when it cannot be had, for whatever reason.
    QFuture<std::optional<QByteArray>> picture(QString filename);

    /// Removes a screenshot, if there is one of that identity.
    ///
    /// This and the two below take the pictures away first, so that a failure never leaves one
    /// that was said to be gone, and fail when the words may still be somewhere on the disk.
    QFuture<void> deleteMemory(QString id);
    /// Removes every screenshot taken before `date`; none when that is no finite number.
    QFuture<void> prune(Date date);
    /// Removes every screenshot, and every file in the folders of pictures and markers.
    QFuture<void> deleteAll();

    /// Settles what saves that were cut short have left: a picture without its row goes, and so do
    /// vectors of screenshots that are no more. Only saves that began more than `grace` seconds
    /// before `now` count as cut short. The number of pictures removed.
    QFuture<qsizetype> reconcile(double grace, Date now);

    /// Seals up to `limit` pictures that lie as plain JPEG, and takes away what earlier sealings
    /// that were cut short have left. How many it sealed; 0 without a vault.
    QFuture<qsizetype> sealExistingPictures(qsizetype limit);

    /// Up to `limit` screenshots, held to 1 to 5,000, that `model` has not read yet, newest first.
    QFuture<QList<Unread>> withoutEmbedding(QString model, int limit);
    QFuture<EmbeddingProgress> embeddingProgress(QString model);
    /// Keeps what `model` made of some screenshots, all or none. Those that are gone meanwhile are
    /// left out without a word.
    QFuture<void> saveEmbeddings(QList<Embedding> embeddings, QString model);
    /// The model that has read most of the library.
    QFuture<std::optional<QString>> widestEmbeddingModel();
    /// Everything that `model` has read, in no order.
    QFuture<QList<Embedding>> embeddings(QString model);

    /// How SQLite would run `sql`, for looking at.
    QFuture<QString> queryPlan(QString sql);

    /// What the user typed as an FTS5 expression: every word must match, as a word's beginning.
    /// Absent when it holds no word. No character typed is ever an operator.
    static std::optional<QString> searchExpression(QStringView typed);

    /// A question as an FTS5 expression: any of its telling words may match, as a word's beginning.
    /// Absent when it holds no word to look for.
    static std::optional<QString> questionExpression(QStringView question);

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
        QString joined() const { return clauses.join(QStringLiteral(" AND ")); }
        QString whereSQL() const;
    };

    /// Does `work`, which only reads, in its turn, for as long as its result is wanted.
    template <typename Work>
    auto search(Work work);

    /// Throws when this store may not write, or when the database's file is no longer the one
    /// that is open: what is written into a removed file is lost without a word.
    void requireWritable() const;
    void saveNow(const Memory& memory, const QByteArray& jpeg);
    void insertRow(const Memory& memory, qsizetype bytesOnDisk);

    QList<Memory> fetchNow(const FetchRequest& request);
    QList<Memory> candidatesNow(const CandidatesRequest& request);
    QMap<Date, qsizetype> dayCountsNow(const DayCountsRequest& request);
    QList<Memory> memoriesNow(const QStringList& ids);
    /// How the rows that match are brought in order.
    enum class Walk { AlongTheTimes, WhicheverIsQuicker };
    /// The rows that hold what was typed. False when nothing can.
    bool addQuery(Conditions& conditions, const QString& query, Walk walk);
    /// The same of one day.
    bool addQueryOfDay(Conditions& conditions, const QString& query, const DateInterval& day);
    /// False when it is sure that an expression matches fewer screenshots than `many`.
    bool mayMatchMany(const QString& expression, int many);
    /// How many screenshots match an expression that many do, or that may as well.
    QMap<Date, qsizetype> dayCountsOfMany(const QString& expression);
    /// The day of a date; absent where there is no condition.
    std::optional<DateInterval> dayOf(const std::optional<Date>& date) const;
    static void addDay(Conditions& conditions, const std::optional<DateInterval>& day);
    static void addApp(Conditions& conditions, const std::optional<QString>& app);
    bool hasTitles() const;
    /// The columns of a Memory, in the order that `readMemory` takes them.
    QString memoryColumns(const QString& text) const;
    static Memory readMemory(const Statement& row, HeldRows& held);
    QList<Memory> readMemories(const QString& sql, const QStringList& values,
                               HeldRows held = HeldRows({}));

    LibraryStats statsNow();
    QHash<QString, QString> bundles();

    void remove(const QString& whereSQL, const QStringList& values);
    /// Whether there were any. Their words may still be in the log afterwards.
    bool removeRows(const QString& whereSQL, const QStringList& values);
    /// Within a transaction. `count`: how many there are.
    void deleteRows(const QString& whereSQL, const QStringList& values, qsizetype count);
    void deleteAllNow();
    void removePictures(const QStringList& filenames) const;
    /// Empties the write-ahead log of what was removed, or throws and owes it to the next removal.
    void emptyLog();
    QStringList referencedFilenames(const QString& whereSQL, const QStringList& values);

    qsizetype reconcileNow(double grace, Date now);
    qsizetype removePicture(const QByteArray& filename, const QByteArrayList& inImages) const;

    qsizetype sealNow(qsizetype limit);
    /// Whether a file among the pictures is what a sealing that was cut short has left: no save
    /// owns up to it, so it would stay until everything is removed.
    bool isLeftover(const QString& name);
    void addBytes(const QString& filename, qint64 growth, qint64 bytes);

    QList<Unread> withoutEmbeddingNow(const QString& model, int limit);
    void saveEmbeddingsNow(const QList<Embedding>& embeddings, const QString& model);
    QList<Embedding> embeddingsNow(const QString& model);

    QString m_root;
    std::optional<ImageVault> m_vault;
    CalendarSource m_calendar;
    bool m_mayWrite = true;
    Database m_db;
    /// Which file the database was when it was opened.
    Files::Identity m_databaseFile;
    /// Whether words of something removed may still stand in the log.
    bool m_owesEmptyLog = false;
    bool m_purgesDeletedTerms = false;
    int m_schemaVersion = 0;
    /// Last, so that it has finished before anything above goes.
    SerialQueue m_queue;
};

template <typename Work>
auto HistoryStore::search(Work work)
{
    return m_queue.run([this, work = std::move(work)](const IsUnwanted& isUnwanted) {
        const Database::GivingUp givingUp(m_db, isUnwanted);
        return work();
    });
}

} // namespace mossbank
