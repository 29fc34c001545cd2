// SPDX-License-Identifier: Apache-2.0
#include "tests/Core/Library/FilledLibrary.h"
#include "tests/Core/Library/SqlWatch.h"

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

const QString kLocked = u"database is locked"_s;

/// Somebody who looks at a library as it is at this moment, and so keeps its log from being emptied
/// until he ends.
class Reader {
public:
    explicit Reader(const LibraryFolder& folder)
        : m_sql(folder.database())
    {
        m_sql.run(u"BEGIN"_s);
        m_sql.value(u"SELECT count(*) FROM memories"_s);
    }

    void end() { m_sql.run(u"COMMIT"_s); }

private:
    RawSql m_sql;
};

} // namespace

/// What was removed stands in the write-ahead log as well, until that is emptied: when that is
/// done, and what is told when somebody is in the way.
class WordsInLogTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aReaderInTheWayIsTold();
    void theNextRemovalEmptiesTheLogWhateverItMatches();
    void whatACrashLeftGoesWhenTheLibraryIsOpened();
    void aReaderInTheWayKeepsNoLibraryShutAndTheNextRemovalEmptiesTheLog();
    void allIsRemovedThoughAReaderIsInTheWay();

private:
    void open()
    {
        m_store.reset();
        m_store = std::make_unique<HistoryStore>(HistoryStore::Writing{.root = m_folder->root()});
    }
    QString deleted(const QString& id)
    {
        return failure<StoreError>([&] { m_store->deleteMemory(id).waitForFinished(); });
    }
    QString allDeleted()
    {
        return failure<StoreError>([&] { m_store->deleteAll().waitForFinished(); });
    }
    qsizetype rows() { return m_store->fetch({.limit = 9}).result().size(); }
    QByteArray log() const { return contents(m_folder->database() + u"-wal"_s); }

    std::unique_ptr<LibraryFolder> m_folder;
    std::unique_ptr<SqlWatch> m_watch;
    std::unique_ptr<HistoryStore> m_store;
};

void WordsInLogTest::init()
{
    m_folder = std::make_unique<LibraryFolder>();
    m_watch = std::make_unique<SqlWatch>();
    open();
    fill(*m_folder, 3);
}

void WordsInLogTest::cleanup()
{
    m_store.reset();
    m_watch.reset();
    QCOMPARE(disagreement(*m_folder), QString());
}

void WordsInLogTest::aReaderInTheWayIsTold()
{
    Reader reader(*m_folder);
    QCOMPARE(deleted(u"1"_s), kLocked);
    // The row is gone all the same.
    QCOMPARE(rows(), 2);
    reader.end();
    QCOMPARE(deleted(u"2"_s), kNoFailure);
    QCOMPARE(log(), QByteArray());
}

void WordsInLogTest::theNextRemovalEmptiesTheLogWhateverItMatches()
{
    Reader reader(*m_folder);
    QCOMPARE(deleted(u"1"_s), kLocked);
    // To try again is no success as long as they are there.
    QCOMPARE(deleted(u"1"_s), kLocked);
    QVERIFY(log().contains(traceOf(1)));
    reader.end();
    QCOMPARE(deleted(u"1"_s), kNoFailure);
    QCOMPARE(log(), QByteArray());
    m_watch->take();
    QCOMPARE(deleted(u"1"_s), kNoFailure);
    QCOMPARE(m_watch->take(), QStringList{u"SELECT filename FROM memories WHERE id = ?"_s});
}

void WordsInLogTest::whatACrashLeftGoesWhenTheLibraryIsOpened()
{
    // A reader that stays keeps the last writer from taking the log along, as a crash would.
    Reader reader(*m_folder);
    QCOMPARE(deleted(u"1"_s), kLocked);
    m_store.reset();
    reader.end();
    QVERIFY(log().contains(traceOf(1)));
    open();
    QCOMPARE(log(), QByteArray());
    // Nothing is owed any more.
    m_watch->take();
    QCOMPARE(deleted(u"1"_s), kNoFailure);
    QCOMPARE(m_watch->take(), QStringList{u"SELECT filename FROM memories WHERE id = ?"_s});
}

void WordsInLogTest::aReaderInTheWayKeepsNoLibraryShutAndTheNextRemovalEmptiesTheLog()
{
    Reader reader(*m_folder);
    QCOMPARE(deleted(u"1"_s), kLocked);
    open();
    QCOMPARE(rows(), 2);
    QVERIFY(log().contains(traceOf(1)));
    QCOMPARE(deleted(u"none"_s), kLocked);
    reader.end();
    QCOMPARE(deleted(u"none"_s), kNoFailure);
    QCOMPARE(log(), QByteArray());
    QCOMPARE(rows(), 2);
}

void WordsInLogTest::allIsRemovedThoughAReaderIsInTheWay()
{
    m_store->saveEmbeddings({{u"1"_s, Vector({1})}}, u"m"_s).waitForFinished();
    QVERIFY(putFile(m_folder->images() + u"/stray.jpg"_s, "bytes"));
    QVERIFY(putFile(m_folder->pending() + u"/stray.jpg"_s, "bytes"));
    Reader reader(*m_folder);
    QCOMPARE(allDeleted(), kLocked);
    QCOMPARE(names(m_folder->images()), QStringList{});
    QCOMPARE(names(m_folder->pending()), QStringList{});
    QCOMPARE(rows(), 0);
    QVERIFY(m_store->embeddings(u"m"_s).result().isEmpty());
    reader.end();
    QCOMPARE(allDeleted(), kNoFailure);
    QCOMPARE(log(), QByteArray());
}

QTEST_GUILESS_MAIN(WordsInLogTest)
#include "WordsInLogTest.moc"
