// SPDX-License-Identifier: Apache-2.0
//
// How screenshots leave the library. The pictures go first, so that a failure never leaves one that
// was said to be gone; then the rows, and with them every word of theirs in the index and the log.
#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Library/ImageVault.h"
#include "MossbankCore/Library/StoreError.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <cmath>
#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

const QString kEveryRow = u"1 = 1"_s;

/// What goes around the DELETE so that the index forgets the words of what was deleted.
struct Purge {
    QString opening;
    QString closing;
};

/// Taking each word out where it stands is quick for a few rows. Building the index anew from what
/// stays is quicker for many, and leaves as little.
Purge purgeFor(bool purgesDeletedTerms, qsizetype removed, qsizetype kept)
{
    constexpr qsizetype kHundredth = 100;
    const QString rebuild = u"INSERT INTO memory_search(memory_search) VALUES('rebuild');"_s;
    const QString option = u"INSERT INTO memory_search(memory_search, rank) "
                           "VALUES('secure-delete', %1);"_s;
    if (!purgesDeletedTerms)
        return {{}, rebuild};
    if (removed * kHundredth < kept)
        return {};
    return {option.arg(0), rebuild + option.arg(1)};
}

/// Makes what went from a folder outlast a power cut. The folder may be gone altogether.
void syncRemovals(const QString& folder)
{
    if (QFileInfo(folder).isDir())
        Files::syncFolder(folder);
}

} // namespace

QFuture<std::optional<QByteArray>> HistoryStore::picture(QString filename)
{
    return m_queue.run([this, filename = std::move(filename)]() -> std::optional<QByteArray> {
        if (!isValidFilename(filename))
            return std::nullopt;
        return ImageVault::picture(images() + u'/' + filename, m_vault);
    });
}

QFuture<void> HistoryStore::deleteMemory(QString id)
{
    return m_queue.run([this, id = std::move(id)] { remove(u"id = ?"_s, {id}); });
}

QFuture<void> HistoryStore::prune(Date date)
{
    return m_queue.run([this, date] {
        // What is no number is written as a word, and SQLite has every number before every word.
        if (std::isfinite(date.secondsSince1970))
            remove(u"timestamp < ?"_s, {decimalText(date.secondsSince1970)});
    });
}

QFuture<void> HistoryStore::deleteAll()
{
    return m_queue.run([this] { deleteAllNow(); });
}

void HistoryStore::deleteAllNow()
{
    removeRows(kEveryRow, {});
    // Also those whose row was lost earlier, and pictures that never had one: all means what is on
    // the disk.
    m_db.execute(u"DELETE FROM embeddings;"_s);
    const QStringList referenced = referencedFilenames(kEveryRow, {});
    QSet<QByteArray> stay;
    for (const QString& name : referenced)
        stay.insert(QFile::encodeName(name));
    for (const QByteArray& name : Files::filesIn(images())) {
        if (!stay.contains(name))
            Files::removeFile(images(), name);
    }
    for (const QByteArray& name : Files::filesIn(pending()))
        Files::removeFile(pending(), name);
    syncRemovals(images());
    syncRemovals(pending());
    emptyLog();
}

void HistoryStore::remove(const QString& whereSQL, const QStringList& values)
{
    // The rows of a removal that failed at its very end are gone, their words may not be.
    if (removeRows(whereSQL, values) || m_owesEmptyLog)
        emptyLog();
}

bool HistoryStore::removeRows(const QString& whereSQL, const QStringList& values)
{
    requireWritable();
    const QStringList filenames = referencedFilenames(whereSQL, values);
    if (filenames.isEmpty())
        return false;
    removePictures(filenames);

    // The summary spares a walk over all rows.
    Statement sum = m_db.statement(u"SELECT coalesce(sum(count), 0) FROM memory_slots"_s);
    if (!sum.step())
        throw StoreError(m_db.errorMessage());
    const qsizetype total = sum.integer(0);
    sum.reset();
    const qsizetype removed = filenames.size();
    const Purge purge = purgeFor(m_purgesDeletedTerms, removed, total - removed);
    m_owesEmptyLog = true;
    m_db.transaction([&] {
        m_db.execute(purge.opening);
        deleteRows(whereSQL, values, removed);
        m_db.execute(purge.closing);
    });
    return true;
}

void HistoryStore::deleteRows(const QString& whereSQL, const QStringList& values, qsizetype count)
{
    // SQLite keeps in memory what a statement changes until that is done, so one for all could keep
    // the whole database.
    constexpr int kAtOnce = 200;
    // The triggers see to the index, the summary and the vectors.
    Statement rows = m_db.statement(
        u"DELETE FROM memories WHERE rowid IN (SELECT rowid FROM memories WHERE %1 LIMIT %2)"_s.arg(
            whereSQL, QString::number(kAtOnce)));
    rows.bind(values);
    for (qsizetype left = count; left > 0; left -= kAtOnce) {
        rows.step();
        rows.reset();
    }
}

void HistoryStore::removePictures(const QStringList& filenames) const
{
    for (const QString& name : filenames) {
        // A row that somebody else wrote may name anything. Nothing outside the folder is touched.
        if (isValidFilename(name))
            Files::removeFile(images() + u'/' + name);
    }
    // Also where they were gone: a try before this may have failed at just this.
    syncRemovals(images());
}

void HistoryStore::emptyLog()
{
    m_owesEmptyLog = true;
    // What was deleted stands in the log until that is emptied. Somebody reading at this moment
    // keeps it from being so, of which SQLite tells in the first column, not by failing.
    Statement emptied = m_db.statement(u"PRAGMA wal_checkpoint(TRUNCATE);"_s);
    if (emptied.step() && emptied.integer(0) != 0)
        throw StoreError(u"database is locked"_s);
    m_owesEmptyLog = false;
}

QStringList HistoryStore::referencedFilenames(const QString& whereSQL, const QStringList& values)
{
    Statement rows = m_db.statement(u"SELECT filename FROM memories WHERE "_s + whereSQL);
    rows.bind(values);
    QStringList filenames;
    while (rows.step())
        filenames.append(rows.text(0));
    return filenames;
}

} // namespace mossbank
