// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/HistoryStore.h"

#include "MossbankCore/Library/Schema.h"
#include "MossbankCore/Library/StoreError.h"
#include "MossbankCore/Support/Files.h"

#include <QFile>
#include <QFileInfo>

#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

QString databasePath(const QString& root)
{
    return root + u"/history.sqlite"_s;
}

Database openForWriting(const QString& root)
{
    Files::createFolder(root);
    Files::createFolder(root + u"/Images"_s);
    Files::createFolder(root + u"/Pending"_s);
    auto opened = Database::open(databasePath(root), Database::Access::ReadWrite);
    if (!opened) {
        HistoryStore::tightenDatabasePermissions(root);
        throw StoreError(u"Could not open the history database."_s);
    }
    try {
        Schema::prepare(*opened);
        Schema::upgrade(*opened);
        Schema::makeIndexReadable(*opened);
    } catch (const StoreError&) {
        opened.reset();
        HistoryStore::tightenDatabasePermissions(root);
        throw;
    }
    return *std::move(opened);
}

Database openForReading(const QString& root)
{
    const QString path = databasePath(root);
    if (!QFileInfo::exists(path))
        throw StoreError(u"No Mossbank library at %1."_s.arg(root));
    auto opened = Database::open(path, Database::Access::ReadOnly);
    if (!opened)
        throw StoreError(u"Could not open the history database at %1."_s.arg(path));
    return *std::move(opened);
}

} // namespace

HistoryStore::HistoryStore(Writing options)
    : m_root(std::move(options.root))
    , m_vault(std::move(options.vault))
    , m_calendar(std::move(options.calendar))
    , m_db(openForWriting(m_root))
    , m_databaseFile(Files::identity(databasePath(m_root)))
    // Some builds of SQLite have no such option, and somebody may be in the way of setting it. All
    // works as well, at the price of a rebuilt index for every removal.
    , m_purgesDeletedTerms(m_db.tryExecute(
          u"INSERT INTO memory_search(memory_search, rank) VALUES('secure-delete', 1)"_s))
    , m_schemaVersion(Schema::userVersion(m_db))
    , m_queue(u"HistoryStore"_s)
{
    // Only now are the log and its index sure to be there.
    tightenDatabasePermissions(m_root);
    try {
        // A crash may have come between a removal and this.
        emptyLog();
    } catch (const StoreError&) {
        // The next removal tries again. Whoever is in the way does not keep the library shut.
    }
}

HistoryStore::HistoryStore(ReadingOnly options)
    : m_root(std::move(options.root))
    , m_calendar(std::move(options.calendar))
    , m_mayWrite(false)
    , m_db(openForReading(m_root))
    , m_schemaVersion(Schema::userVersion(m_db))
    , m_queue(u"HistoryStore"_s)
{
}

HistoryStore::~HistoryStore() = default;

QString HistoryStore::images() const
{
    return m_root + u"/Images"_s;
}

QString HistoryStore::pending() const
{
    return m_root + u"/Pending"_s;
}

void HistoryStore::tightenDatabasePermissions(const QString& root)
{
    for (const QString& suffix : {u""_s, u"-wal"_s, u"-shm"_s}) {
        QFile file(databasePath(root) + suffix);
        if (file.exists())
            file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    }
}

void HistoryStore::requireWritable() const
{
    if (!m_mayWrite)
        throw StoreError(u"This library was opened for reading only."_s);
    if (Files::identity(databasePath(m_root)) != m_databaseFile)
        throw StoreError(u"The history database was removed or replaced."_s);
}

QFuture<QString> HistoryStore::queryPlan(QString sql)
{
    return m_queue.run([this, sql = std::move(sql)] {
        Statement plan = m_db.statement(u"EXPLAIN QUERY PLAN "_s + sql);
        QStringList details;
        while (plan.step()) {
            constexpr int kDetail = 3;
            details.append(plan.text(kDetail));
        }
        return details.join(u"; "_s);
    });
}

} // namespace mossbank
