// SPDX-License-Identifier: Apache-2.0
#include "tests/Core/Library/LibraryTesting.h"
#include "tests/Core/Library/OldLibraries.h"
#include "tests/Core/Library/RawSql.h"
#include "tests/Core/Library/SqlWatch.h"

using namespace mossbank;
using namespace Qt::StringLiterals;

class OpeningTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void thisProgramRunsTheSqliteItIsBuiltFor();
    void anEmptyFolderBecomesALibraryOpenToTheUserAlone();
    void foldersAboveTheLibraryAreMadeToo();
    void foldersThatAreThereStayAsTheyAre();
    void rightsOfTheDatabaseAreTightenedAtEveryOpening();
    void tighteningWhatIsNotThereIsFine();
    void openingRunsTheseStatementsInThisOrder();
    void deletedRowsLeaveNoWordsInTheFile();
    void readingWhereThereIsNoLibrarySaysWhere();
    void readingAnOlderLibraryChangesNothing_data();
    void readingAnOlderLibraryChangesNothing();
    void readingSetsNothing();
    void readingCannotSave();
    void aLibraryOfALaterVersionStaysWhatItIs();
    void anIndexThatANewerSqliteWroteIsReadable();
};

void OpeningTest::thisProgramRunsTheSqliteItIsBuiltFor()
{
    const LibraryFolder folder;
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    constexpr int kFirstThatPurges = 3'042'000;
    const int version = sqlite3_libversion_number();
    QCOMPARE(store.purgesDeletedTerms(), version >= kFirstThatPurges);
    QCOMPARE(store.purgesDeletedTerms(), MOSSBANK_SQLITE_PURGES == 1);
#ifdef MOSSBANK_SYSTEM_SQLITE_VERSION
    QCOMPARE(QByteArray(sqlite3_libversion()), QByteArray(MOSSBANK_SYSTEM_SQLITE_VERSION));
#else
    QCOMPARE(QByteArray(sqlite3_libversion()), QByteArray(SQLITE_VERSION));
#endif
    if (store.purgesDeletedTerms())
        QCOMPARE(RawSql(folder.database())
                     .value(u"SELECT v FROM memory_search_config WHERE k = 'secure-delete'"_s),
                 u"1"_s);
}

void OpeningTest::anEmptyFolderBecomesALibraryOpenToTheUserAlone()
{
    const LibraryFolder folder;
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    QCOMPARE(store.schemaVersion(), 5);
    QCOMPARE(store.root(), folder.root());
    QCOMPARE(store.images(), folder.root() + u"/Images"_s);
    QCOMPARE(names(folder.root()), (QStringList{u"Images"_s, u"Pending"_s, u"history.sqlite"_s,
                                                u"history.sqlite-shm"_s, u"history.sqlite-wal"_s}));
    for (const QString& made : {folder.root(), folder.images(), folder.pending()})
        QCOMPARE(mode(made), 0700);
    for (const QString& suffix : {u""_s, u"-wal"_s, u"-shm"_s})
        QCOMPARE(mode(folder.database() + suffix), 0600);
    QCOMPARE(store.fetch({.limit = 10}).result(), QList<Memory>());
}

void OpeningTest::foldersAboveTheLibraryAreMadeToo()
{
    const LibraryFolder folder;
    const QString deep = folder.root() + u"/one/two"_s;
    HistoryStore store(HistoryStore::Writing{.root = deep});
    QVERIFY(QFile::exists(deep + u"/history.sqlite"_s));
    QCOMPARE(mode(folder.root()), 0700);
    QCOMPARE(mode(folder.root() + u"/one"_s), 0700);
}

void OpeningTest::foldersThatAreThereStayAsTheyAre()
{
    const LibraryFolder folder;
    QVERIFY(QDir().mkpath(folder.images()));
    QVERIFY(QFile::setPermissions(folder.images(), QFile::Permissions::fromInt(0x7755)));
    QVERIFY(putFile(folder.images() + u"/old.jpg"_s, "picture"));
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    QCOMPARE(mode(folder.images()), 0755);
    QCOMPARE(contents(folder.images() + u"/old.jpg"_s), QByteArray("picture"));
}

void OpeningTest::rightsOfTheDatabaseAreTightenedAtEveryOpening()
{
    const LibraryFolder folder;
    const auto loosen = [&folder] {
        return QFile::setPermissions(folder.database(), QFile::Permissions::fromInt(0x6644));
    };
    HistoryStore(HistoryStore::Writing{.root = folder.root()});
    QVERIFY(loosen());
    QCOMPARE(mode(folder.database()), 0644);
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    for (const QString& suffix : {u""_s, u"-wal"_s, u"-shm"_s})
        QCOMPARE(mode(folder.database() + suffix), 0600);
}

void OpeningTest::tighteningWhatIsNotThereIsFine()
{
    const LibraryFolder folder;
    HistoryStore::tightenDatabasePermissions(folder.root());
    QVERIFY(!QFile::exists(folder.root()));
    QVERIFY(QDir().mkpath(folder.root()));
    QVERIFY(putFile(folder.database() + u"-shm"_s, "x"));
    HistoryStore::tightenDatabasePermissions(folder.root());
    QCOMPARE(mode(folder.database() + u"-shm"_s), 0600);
    QCOMPARE(names(folder.root()), QStringList{u"history.sqlite-shm"_s});
}

void OpeningTest::openingRunsTheseStatementsInThisOrder()
{
    const LibraryFolder folder;
    SqlWatch watch;
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    const QStringList statements = watch.take();
    QVERIFY(statements.size() > 8);
    QCOMPARE(statements.at(0), u"PRAGMA temp_store=MEMORY;"_s);
    QCOMPARE(statements.at(1), u"PRAGMA journal_mode=WAL;"_s);
    QCOMPARE(statements.at(2), u"PRAGMA secure_delete=ON;"_s);
    QVERIFY(statements.at(3).startsWith(u"CREATE TABLE IF NOT EXISTS memories ("_s));
    const auto at = [&statements](const QString& start) {
        for (qsizetype index = 0; index < statements.size(); ++index)
            if (statements.at(index).startsWith(start))
                return index;
        return qsizetype(-1);
    };
    const qsizetype asked = at(u"PRAGMA user_version"_s);
    const qsizetype migrated = at(u"PRAGMA user_version = 5"_s);
    QVERIFY(4 < asked && asked < migrated);
    if (store.purgesDeletedTerms()) {
        const auto purging =
            at(u"INSERT INTO memory_search(memory_search, rank) VALUES('secure-delete', 1)"_s);
        QVERIFY(migrated < purging);
        QCOMPARE(purging, statements.size() - 3);
    }
    QCOMPARE(statements.at(statements.size() - 2), u"PRAGMA user_version"_s);
    QCOMPARE(statements.last(), u"PRAGMA wal_checkpoint(TRUNCATE);"_s);
    for (const QString& pragma : statements.filter(u"PRAGMA"_s))
        QVERIFY2(
            pragma.contains(QRegularExpression(
                u"^PRAGMA (temp_store|journal_mode|secure_delete|user_version|wal_checkpoint)"_s)),
            qPrintable(pragma));
}

void OpeningTest::deletedRowsLeaveNoWordsInTheFile()
{
    const LibraryFolder folder;
    // Long enough to lie on pages of its own, which a deletion would only mark as free.
    const QString secret = u"zephyrquartz "_s.repeated(2000);
    {
        HistoryStore store(HistoryStore::Writing{.root = folder.root()});
        Memory memory = sampleMemory(u"A"_s);
        memory.text = secret;
        store.save(memory, "jpeg").waitForFinished();
        QVERIFY((contents(folder.database()) + contents(folder.database() + u"-wal"_s))
                    .contains("zephyrquartz"));
    }
    {
        SqlWatch watch;
        HistoryStore store(HistoryStore::Writing{.root = folder.root()});
        QVERIFY(watch.take().contains(u"PRAGMA secure_delete=ON;"_s));
        RawSql sql(folder.database());
        sql.run(u"PRAGMA secure_delete=ON; DELETE FROM memories;"
                "INSERT INTO memory_search(memory_search) VALUES('rebuild');"
                "PRAGMA wal_checkpoint(TRUNCATE)"_s);
    }
    QVERIFY(!contents(folder.database()).contains("zephyrquartz"));
}

void OpeningTest::readingWhereThereIsNoLibrarySaysWhere()
{
    const LibraryFolder folder;
    const auto open = [&folder] {
        HistoryStore(HistoryStore::ReadingOnly{folder.root()});
    };
    QCOMPARE(failure<StoreError>(open), u"No Mossbank library at %1."_s.arg(folder.root()));
    QVERIFY(!QFile::exists(folder.root()));
    QVERIFY(QDir().mkpath(folder.root()));
    QCOMPARE(failure<StoreError>(open), u"No Mossbank library at %1."_s.arg(folder.root()));
    QCOMPARE(names(folder.root()), QStringList{});
}

void OpeningTest::readingAnOlderLibraryChangesNothing_data()
{
    QTest::addColumn<int>("version");
    for (const int version : {0, 2, 3, 4})
        QTest::newRow(qPrintable(u"version %1"_s.arg(version))) << version;
}

void OpeningTest::readingAnOlderLibraryChangesNothing()
{
    QFETCH(int, version);
    const LibraryFolder folder;
    QVERIFY(putOldDatabase(version, folder));
    QVERIFY(QFile::setPermissions(folder.database(), QFile::Permissions::fromInt(0x6644)));
    const QByteArray before = contents(folder.database());
    {
        HistoryStore reader(HistoryStore::ReadingOnly{folder.root()});
        QCOMPARE(reader.schemaVersion(), version);
        QVERIFY(!reader.purgesDeletedTerms());
        QCOMPARE(reader.fetch({.limit = 100, .withText = true}).result(), oldMemories(version));
        for (const auto& [word, id] : tellingWords())
            QCOMPARE(ids(reader.fetch({.query = word, .limit = 100}).result()), QStringList{id});
        QVERIFY(!QFile::exists(folder.images()));
        QVERIFY(!QFile::exists(folder.pending()));
    }
    QCOMPARE(contents(folder.database()), before);
    QCOMPARE(mode(folder.database()), 0644);
    // SQLite itself puts an empty log and its index beside a database of this mode, with the
    // database's own rights. Nothing else may be there.
    for (const QString& name : names(folder.root()))
        QVERIFY2(name.startsWith(u"history.sqlite"_s), qPrintable(name));
    QCOMPARE(contents(folder.database() + u"-wal"_s), QByteArray());
    RawSql sql(folder.database(), SQLITE_OPEN_READONLY);
    QCOMPARE(sql.userVersion(), version);
}

void OpeningTest::readingSetsNothing()
{
    const LibraryFolder folder;
    HistoryStore writer(HistoryStore::Writing{.root = folder.root()});
    SqlWatch watch;
    HistoryStore reader(HistoryStore::ReadingOnly{folder.root()});
    QCOMPARE(watch.take(), (QStringList{u"PRAGMA temp_store=MEMORY;"_s, u"PRAGMA user_version"_s}));
    QCOMPARE(reader.schemaVersion(), 5);
}

void OpeningTest::readingCannotSave()
{
    const LibraryFolder folder;
    HistoryStore writer(HistoryStore::Writing{.root = folder.root()});
    HistoryStore reader(HistoryStore::ReadingOnly{folder.root()});
    QCOMPARE(failure<StoreError>(
                 [&reader] { reader.save(sampleMemory(u"A"_s), "jpeg").waitForFinished(); }),
             u"This library was opened for reading only."_s);
    QCOMPARE(names(folder.images()), QStringList{});
    QCOMPARE(names(folder.pending()), QStringList{});
}

void OpeningTest::aLibraryOfALaterVersionStaysWhatItIs()
{
    const LibraryFolder folder;
    HistoryStore(HistoryStore::Writing{.root = folder.root()})
        .save(sampleMemory(u"A"_s), "jpeg")
        .waitForFinished();
    RawSql(folder.database())
        .run(u"ALTER TABLE memories ADD COLUMN mood TEXT NOT NULL DEFAULT 'calm';"
             "PRAGMA user_version = 9"_s);
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    QCOMPARE(store.schemaVersion(), 9);
    store.save(sampleMemory(u"B"_s), "jpeg").waitForFinished();
    QCOMPARE(ids(store.fetch({.query = u"words"_s, .limit = 9}).result()),
             (QStringList{u"B"_s, u"A"_s}));
    RawSql sql(folder.database());
    QCOMPARE(sql.userVersion(), 9);
    QCOMPARE(sql.rows(u"SELECT id, mood FROM memories"_s), (QStringList{u"A|calm"_s, u"B|calm"_s}));
}

void OpeningTest::anIndexThatANewerSqliteWroteIsReadable()
{
    const LibraryFolder folder;
    HistoryStore(HistoryStore::Writing{.root = folder.root()})
        .save(sampleMemory(u"A"_s), "jpeg")
        .waitForFinished();
    // The number of the form that SQLite 3.42 begins to use as it takes words out in place.
    RawSql(folder.database()).run(u"UPDATE memory_search_config SET v = 5 WHERE k = 'version'"_s);
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    QCOMPARE(ids(store.fetch({.query = u"words"_s, .limit = 9}).result()), QStringList{u"A"_s});
    store.save(sampleMemory(u"B"_s), "jpeg").waitForFinished();
    store.deleteMemory(u"A"_s).waitForFinished();
    QCOMPARE(ids(store.fetch({.query = u"words"_s, .limit = 9}).result()), QStringList{u"B"_s});
}

QTEST_GUILESS_MAIN(OpeningTest)
#include "OpeningTest.moc"
