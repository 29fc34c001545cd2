// SPDX-License-Identifier: Apache-2.0
#include "tests/Core/Library/LibraryTesting.h"
#include "tests/Core/Library/OldLibraries.h"
#include "tests/Core/Library/RawSql.h"
#include "tests/Core/Library/SqlWatch.h"
#include "tests/Core/Library/Summary.h"

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

constexpr int kVersionOfToday = 5;

QString schemaOf(RawSql& sql)
{
    return sql.rows(u"SELECT type, name, sql FROM sqlite_schema ORDER BY type, name"_s).join(u'\n');
}

} // namespace

class MigrationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anOlderLibraryComesUpWhole_data();
    void anOlderLibraryComesUpWhole();
    void everyRoadLeadsToTheSameShape();
    void aLibraryOfVersionOneTakesTheWholeRoad();
    void onlyWhatIsMissingRuns_data();
    void onlyWhatIsMissingRuns();
    void openingAgainRunsNoMigration();
    void aFailingMigrationLeavesNoTrace_data();
    void aFailingMigrationLeavesNoTrace();
};

void MigrationTest::anOlderLibraryComesUpWhole_data()
{
    QTest::addColumn<int>("version");
    for (const int version : {0, 2, 3, 4})
        QTest::newRow(qPrintable(u"version %1"_s.arg(version))) << version;
}

void MigrationTest::anOlderLibraryComesUpWhole()
{
    QFETCH(int, version);
    const LibraryFolder folder;
    QVERIFY(putOldDatabase(version, folder));

    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    QCOMPARE(store.schemaVersion(), kVersionOfToday);
    QCOMPARE(store.fetch({.limit = 100, .withText = true}).result(), oldMemories(version));
    for (const auto& [word, id] : tellingWords())
        QCOMPARE(ids(store.fetch({.query = word, .limit = 100}).result()), QStringList{id});
    if (version >= kFirstVersionWithTitles)
        QCOMPARE(ids(store.fetch({.query = u"lighthouses example"_s, .limit = 9}).result()),
                 QStringList{u"A4"_s});

    RawSql sql(folder.database());
    QCOMPARE(sql.userVersion(), kVersionOfToday);
    QCOMPARE(summary(sql), recount(sql));
    QCOMPARE(summary(sql).first(), u"-1|Clock|2|48000"_s);
    sql.run(u"INSERT INTO memory_search(memory_search, rank) VALUES('integrity-check', 1)"_s);
    QCOMPARE(sql.value(u"PRAGMA integrity_check"_s), u"ok"_s);

    store.save(sampleMemory(u"NEW"_s), "jpeg").waitForFinished();
    QCOMPARE(summary(sql), recount(sql));
    QCOMPARE(ids(store.fetch({.query = u"words NEW"_s, .limit = 9}).result()),
             QStringList{u"NEW"_s});
}

void MigrationTest::everyRoadLeadsToTheSameShape()
{
    const LibraryFolder fresh;
    HistoryStore made(HistoryStore::Writing{.root = fresh.root()});
    RawSql freshSql(fresh.database());
    // An added column stands in the text of its table as it was added, in every road alike.
    for (const int version : {0, 2, 3, 4}) {
        const LibraryFolder folder;
        QVERIFY(putOldDatabase(version, folder));
        HistoryStore store(HistoryStore::Writing{.root = folder.root()});
        RawSql sql(folder.database());
        QCOMPARE(sql.rows(u"SELECT type, name, tbl_name FROM sqlite_schema ORDER BY 1, 2"_s),
                 freshSql.rows(u"SELECT type, name, tbl_name FROM sqlite_schema ORDER BY 1, 2"_s));
        for (const QString& table : {u"memories"_s, u"memory_search"_s, u"memory_slots"_s}) {
            const QString columns = u"SELECT * FROM pragma_table_info('%1')"_s.arg(table);
            QCOMPARE(sql.rows(columns), freshSql.rows(columns));
        }
    }
}

void MigrationTest::aLibraryOfVersionOneTakesTheWholeRoad()
{
    const LibraryFolder folder;
    QVERIFY(putOldDatabase(0, folder));
    RawSql(folder.database()).run(u"PRAGMA user_version = 1"_s);
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    QCOMPARE(store.schemaVersion(), kVersionOfToday);
    QCOMPARE(store.fetch({.limit = 100, .withText = true}).result(), oldMemories(1));
}

void MigrationTest::onlyWhatIsMissingRuns_data()
{
    QTest::addColumn<int>("version");
    QTest::addColumn<QStringList>("steps");
    const auto step = [](int number) {
        return u"PRAGMA user_version = %1;"_s.arg(number);
    };
    QTest::newRow("version 0") << 0 << QStringList{step(2), step(3), step(4), step(5)};
    QTest::newRow("version 2") << 2 << QStringList{step(3), step(4), step(5)};
    QTest::newRow("version 3") << 3 << QStringList{step(4), step(5)};
    QTest::newRow("version 4") << 4 << QStringList{step(5)};
}

void MigrationTest::onlyWhatIsMissingRuns()
{
    QFETCH(int, version);
    QFETCH(QStringList, steps);
    const LibraryFolder folder;
    QVERIFY(putOldDatabase(version, folder));
    SqlWatch watch;
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    const QStringList statements = watch.take();
    QCOMPARE(statements.filter(u"PRAGMA user_version ="_s), steps);
    const QStringList frame =
        statements.filter(QRegularExpression(u"^(BEGIN|COMMIT|PRAGMA (user_version =|wal_))"_s));
    QStringList expected;
    for (const QString& step : std::as_const(steps))
        expected +=
            {u"BEGIN IMMEDIATE;"_s, step, u"COMMIT;"_s, u"PRAGMA wal_checkpoint(TRUNCATE)"_s};
    // And once more whatever ran: a crash may have left words of removed rows in the log.
    expected += u"PRAGMA wal_checkpoint(TRUNCATE);"_s;
    QCOMPARE(frame, expected);
}

void MigrationTest::openingAgainRunsNoMigration()
{
    const LibraryFolder folder;
    HistoryStore(HistoryStore::Writing{.root = folder.root()})
        .save(sampleMemory(u"A"_s), "jpeg")
        .waitForFinished();
    QString shape;
    {
        RawSql sql(folder.database());
        shape = schemaOf(sql) + sql.value(u"PRAGMA schema_version"_s);
    }
    SqlWatch watch;
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    QCOMPARE(store.schemaVersion(), kVersionOfToday);
    QStringList statements;
    for (const QString& statement : watch.take())
        statements.append(statement.section(u'(', 0, 0).simplified());
    // Nothing of the second CREATE INDEX or TABLE: SQLite sees that they are there.
    QVERIFY2(statements.filter(u"BEGIN"_s).isEmpty(), qPrintable(statements.join(u'\n')));
    QVERIFY(statements.filter(u"user_version ="_s).isEmpty());
    // FTS5 of older SQLite asks for more by itself.
    QCOMPARE(statements.filter(QRegularExpression(u"^PRAGMA (?!'main')"_s)),
             (QStringList{u"PRAGMA temp_store=MEMORY;"_s, u"PRAGMA journal_mode=WAL;"_s,
                          u"PRAGMA secure_delete=ON;"_s, u"PRAGMA user_version"_s,
                          u"PRAGMA user_version"_s, u"PRAGMA wal_checkpoint"_s}));
    RawSql sql(folder.database());
    QCOMPARE(schemaOf(sql) + sql.value(u"PRAGMA schema_version"_s), shape);
    QCOMPARE(ids(store.fetch({.limit = 9}).result()), QStringList{u"A"_s});
}

void MigrationTest::aFailingMigrationLeavesNoTrace_data()
{
    QTest::addColumn<int>("version");
    QTest::addColumn<QString>("obstacle");
    QTest::addColumn<QString>("message");
    QTest::addColumn<int>("versionLeft");
    QTest::addColumn<QString>("remedy");
    // The older search table has been dropped by the time this one fails.
    QTest::newRow("to 2") << 0 << u"CREATE VIEW memory_slots AS SELECT 1"_s
                          << u"use DROP VIEW to delete view memory_slots"_s << 0
                          << u"DROP VIEW memory_slots"_s;
    // The title has been added by then.
    QTest::newRow("to 3") << 2 << u"ALTER TABLE memories ADD COLUMN link TEXT"_s
                          << u"duplicate column name: link"_s << 2
                          << u"ALTER TABLE memories DROP COLUMN link"_s;
    QTest::newRow("to 3, after 2 went well")
        << 0 << u"ALTER TABLE memories ADD COLUMN link TEXT"_s << u"duplicate column name: link"_s
        << 2 << u"ALTER TABLE memories DROP COLUMN link"_s;
    QTest::newRow("to 4") << 3 << u"CREATE TABLE memories_app (x)"_s
                          << u"there is already a table named memories_app"_s << 3
                          << u"DROP TABLE memories_app"_s;
    QTest::newRow("to 5") << 4 << u"CREATE INDEX embeddings ON memories(bytes)"_s
                          << u"there is already an index named embeddings"_s << 4
                          << u"DROP INDEX embeddings"_s;
}

void MigrationTest::aFailingMigrationLeavesNoTrace()
{
    QFETCH(int, version);
    QFETCH(QString, obstacle);
    QFETCH(QString, message);
    QFETCH(int, versionLeft);
    QFETCH(QString, remedy);
    const LibraryFolder folder;
    QVERIFY(putOldDatabase(version, folder));
    QVERIFY(QFile::setPermissions(folder.database(), QFile::Permissions::fromInt(0x6666)));
    QString shape;
    {
        RawSql sql(folder.database());
        sql.run(obstacle);
        shape = schemaOf(sql);
    }

    for (int attempt = 0; attempt < 2; ++attempt) {
        const auto said = failure<StoreError>(
            [&folder] { HistoryStore(HistoryStore::Writing{.root = folder.root()}); });
        QCOMPARE(said, message);
        QCOMPARE(mode(folder.database()), 0600);
        // Nothing holds the database: a writer gets its lock at once.
        RawSql sql(folder.database());
        sql.run(u"BEGIN EXCLUSIVE; ROLLBACK"_s);
        QCOMPARE(sql.userVersion(), versionLeft);
        if (versionLeft == version)
            QCOMPARE(schemaOf(sql), shape);
        QCOMPARE(sql.value(u"SELECT count(*) FROM memories"_s), u"6"_s);
    }

    RawSql(folder.database()).run(remedy);
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    QCOMPARE(store.schemaVersion(), kVersionOfToday);
    QCOMPARE(store.fetch({.limit = 100, .withText = true}).result(), oldMemories(version));
    QCOMPARE(ids(store.fetch({.query = u"kirmizi"_s, .limit = 9}).result()), QStringList{u"A1"_s});
}

QTEST_GUILESS_MAIN(MigrationTest)
#include "MigrationTest.moc"
