// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/Schema.h"

#include "tests/Core/Library/LibraryTesting.h"
#include "tests/Core/Library/RawSql.h"

#include <QRandomGenerator>

#include <cmath>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

/// Spaces and line ends as one space, for comparing SQL.
QString flat(const QString& sql)
{
    return sql.simplified();
}

const QString kNewSlot =
    u"(CAST(new.timestamp / 900 AS INTEGER) - (new.timestamp < CAST(new.timestamp / 900 AS INTEGER) * 900))"_s;
const QString kOldSlot =
    u"(CAST(old.timestamp / 900 AS INTEGER) - (old.timestamp < CAST(old.timestamp / 900 AS INTEGER) * 900))"_s;

} // namespace

class SchemaTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void thereAreTheseObjectsAndNoOthers();
    void tablesHaveTheseColumns_data();
    void tablesHaveTheseColumns();
    void indexesCoverTheseColumns();
    void tablesOfTwoKeysHaveNoRowid();
    void theSearchTableReadsMemoriesThroughUnicode61();
    void triggersKeepIndexAndSummaryInStep();
    void deletingARowTakesItsTracesAlong();
    void theFileStaysInTheModeOfALog();
    void slotsAreRoundedDown_data();
    void slotsAreRoundedDown();
    void slotsOfRandomTimesAreTheirFloor();

private:
    std::unique_ptr<LibraryFolder> m_folder;
};

void SchemaTest::init()
{
    m_folder = std::make_unique<LibraryFolder>();
    HistoryStore store(HistoryStore::Writing{.root = m_folder->root()});
}

void SchemaTest::thereAreTheseObjectsAndNoOthers()
{
    RawSql sql(m_folder->database());
    QCOMPARE(sql.userVersion(), 5);
    QCOMPARE(sql.rows(u"SELECT type, name, tbl_name FROM sqlite_schema "
                      "WHERE name NOT LIKE 'memory_search_%' ORDER BY type, name"_s),
             (QStringList{
                 u"index|memories_app|memories"_s,
                 u"index|memories_time|memories"_s,
                 u"index|sqlite_autoindex_memories_1|memories"_s,
                 u"table|embeddings|embeddings"_s,
                 u"table|memories|memories"_s,
                 u"table|memory_search|memory_search"_s,
                 u"table|memory_slots|memory_slots"_s,
                 u"trigger|memories_delete|memories"_s,
                 u"trigger|memories_embedding_delete|memories"_s,
                 u"trigger|memories_insert|memories"_s,
             }));
    // FTS5's own. There is no table of content: the index holds no text of its own.
    QCOMPARE(sql.rows(u"SELECT name FROM sqlite_schema WHERE name LIKE 'memory_search_%' "
                      "AND type = 'table' ORDER BY name"_s),
             (QStringList{u"memory_search_config"_s, u"memory_search_data"_s,
                          u"memory_search_docsize"_s, u"memory_search_idx"_s}));
}

void SchemaTest::tablesHaveTheseColumns_data()
{
    // name|type|not null|default|place in the primary key
    QTest::addColumn<QString>("table");
    QTest::addColumn<QStringList>("columns");
    QTest::newRow("memories") << u"memories"_s
                              << QStringList{
                                     u"id|TEXT|0|NULL|1"_s,       u"timestamp|REAL|1|NULL|0"_s,
                                     u"app_name|TEXT|1|NULL|0"_s, u"bundle_id|TEXT|1|NULL|0"_s,
                                     u"text|TEXT|1|NULL|0"_s,     u"filename|TEXT|1|NULL|0"_s,
                                     u"bytes|INTEGER|1|NULL|0"_s, u"title|TEXT|1|''|0"_s,
                                     u"link|TEXT|1|''|0"_s};
    QTest::newRow("memory_slots") << u"memory_slots"_s
                                  << QStringList{
                                         u"slot|INTEGER|1|NULL|1"_s, u"app_name|TEXT|1|NULL|2"_s,
                                         u"count|INTEGER|1|NULL|0"_s, u"bytes|INTEGER|1|NULL|0"_s};
    QTest::newRow("embeddings") << u"embeddings"_s
                                << QStringList{u"id|TEXT|1|NULL|1"_s, u"model|TEXT|1|NULL|2"_s,
                                               u"vector|BLOB|1|NULL|0"_s};
    QTest::newRow("memory_search")
        << u"memory_search"_s
        << QStringList{u"id||0|NULL|0"_s, u"app_name||0|NULL|0"_s, u"title||0|NULL|0"_s,
                       u"link||0|NULL|0"_s, u"text||0|NULL|0"_s};
}

void SchemaTest::tablesHaveTheseColumns()
{
    QFETCH(QString, table);
    RawSql sql(m_folder->database());
    QTEST(sql.rows(u"SELECT name, type, \"notnull\", dflt_value, pk FROM pragma_table_info(?)"_s,
                   {table}),
          "columns");
}

void SchemaTest::indexesCoverTheseColumns()
{
    RawSql sql(m_folder->database());
    const auto columns = [&sql](const QString& index) {
        return sql.rows(u"SELECT name FROM pragma_index_info(?) ORDER BY seqno"_s, {index});
    };
    QCOMPARE(columns(u"memories_time"_s), QStringList{u"timestamp"_s});
    QCOMPARE(columns(u"memories_app"_s), (QStringList{u"app_name"_s, u"bundle_id"_s}));
}

void SchemaTest::tablesOfTwoKeysHaveNoRowid()
{
    RawSql sql(m_folder->database());
    QCOMPARE(sql.rows(u"SELECT name FROM pragma_table_list WHERE schema = 'main' AND wr = 1 "
                      "AND name NOT LIKE 'memory_search_%' ORDER BY name"_s),
             (QStringList{u"embeddings"_s, u"memory_slots"_s}));
}

void SchemaTest::theSearchTableReadsMemoriesThroughUnicode61()
{
    RawSql sql(m_folder->database());
    QCOMPARE(flat(sql.value(u"SELECT sql FROM sqlite_schema WHERE name = 'memory_search'"_s)),
             u"CREATE VIRTUAL TABLE memory_search USING fts5(id UNINDEXED, app_name, title, link, "
             "text, content='memories', content_rowid='rowid', tokenize='unicode61')"_s);
}

void SchemaTest::triggersKeepIndexAndSummaryInStep()
{
    RawSql sql(m_folder->database());
    const auto trigger = [&sql](const QString& name) {
        return flat(sql.value(u"SELECT sql FROM sqlite_schema WHERE name = ?"_s, {name}));
    };
    QCOMPARE(trigger(u"memories_insert"_s),
             flat(u"CREATE TRIGGER memories_insert AFTER INSERT ON memories BEGIN "
                  "INSERT INTO memory_search(rowid, id, app_name, title, link, text) "
                  "VALUES (new.rowid, new.id, new.app_name, new.title, new.link, new.text); "
                  "INSERT INTO memory_slots VALUES ("_s +
                  kNewSlot +
                  u", new.app_name, 1, new.bytes) ON CONFLICT (slot, app_name) "
                  "DO UPDATE SET count = count + 1, bytes = bytes + excluded.bytes; END"_s));
    QCOMPARE(
        trigger(u"memories_delete"_s),
        flat(u"CREATE TRIGGER memories_delete AFTER DELETE ON memories BEGIN "
             "INSERT INTO memory_search(memory_search, rowid, id, app_name, title, link, text) "
             "VALUES ('delete', old.rowid, old.id, old.app_name, old.title, old.link, old.text); "
             "UPDATE memory_slots SET count = count - 1, bytes = bytes - old.bytes "
             "WHERE slot = "_s +
             kOldSlot + u" AND app_name = old.app_name; DELETE FROM memory_slots WHERE slot = "_s +
             kOldSlot + u" AND app_name = old.app_name AND count = 0; END"_s));
    QCOMPARE(trigger(u"memories_embedding_delete"_s),
             u"CREATE TRIGGER memories_embedding_delete AFTER DELETE ON memories BEGIN "
             "DELETE FROM embeddings WHERE id = old.id; END"_s);
}

void SchemaTest::deletingARowTakesItsTracesAlong()
{
    RawSql sql(m_folder->database());
    sql.run(
        u"INSERT INTO memories VALUES ('1', 10, 'Editor', '', 'moss', '1.jpg', 100, 'One', '');"
        "INSERT INTO memories VALUES ('2', 20, 'Editor', '', 'fern', '2.jpg', 30, 'Two', '');"
        "INSERT INTO embeddings VALUES ('1', 'm', x'00'), ('1', 'n', x'00'), ('2', 'm', x'00');"_s);
    QCOMPARE(sql.rows(u"SELECT * FROM memory_slots"_s), QStringList{u"0|Editor|2|130"_s});

    sql.run(u"DELETE FROM memories WHERE id = '1'"_s);
    QCOMPARE(sql.rows(u"SELECT * FROM memory_slots"_s), QStringList{u"0|Editor|1|30"_s});
    QCOMPARE(sql.rows(u"SELECT id, model FROM embeddings"_s), QStringList{u"2|m"_s});
    QCOMPARE(sql.rows(u"SELECT rowid FROM memory_search WHERE memory_search MATCH 'moss OR one'"_s),
             QStringList{});
    QCOMPARE(sql.rows(u"SELECT id FROM memory_search WHERE memory_search MATCH 'two fern'"_s),
             QStringList{u"2"_s});

    sql.run(u"DELETE FROM memories"_s);
    QCOMPARE(sql.rows(u"SELECT * FROM memory_slots"_s), QStringList{});
    sql.run(u"INSERT INTO memory_search(memory_search, rank) VALUES('integrity-check', 1)"_s);
}

void SchemaTest::theFileStaysInTheModeOfALog()
{
    QCOMPARE(RawSql(m_folder->database()).value(u"PRAGMA journal_mode"_s), u"wal"_s);
}

void SchemaTest::slotsAreRoundedDown_data()
{
    QTest::addColumn<QString>("time");
    QTest::addColumn<QString>("slot");
    QTest::newRow("-900.5") << u"-900.5"_s << u"-2"_s;
    QTest::newRow("-900") << u"-900.0"_s << u"-1"_s;
    QTest::newRow("-1.5") << u"-1.5"_s << u"-1"_s;
    QTest::newRow("just below zero") << u"-0.000001"_s << u"-1"_s;
    QTest::newRow("0") << u"0.0"_s << u"0"_s;
    QTest::newRow("899.9") << u"899.9"_s << u"0"_s;
    QTest::newRow("900") << u"900.0"_s << u"1"_s;
    QTest::newRow("of our days") << u"1700000000.25"_s << u"1888888"_s;
}

void SchemaTest::slotsAreRoundedDown()
{
    QFETCH(QString, time);
    QFETCH(QString, slot);
    RawSql sql(u":memory:"_s);
    QCOMPARE(sql.value(u"SELECT %1"_s.arg(Schema::slot(u"(%1)"_s.arg(time)))), slot);

    RawSql library(m_folder->database());
    library.run(
        u"INSERT INTO memories VALUES ('1', %1, 'Editor', '', '', '1.jpg', 1, '', '')"_s.arg(time));
    QCOMPARE(library.value(u"SELECT slot FROM memory_slots"_s), slot);
}

void SchemaTest::slotsOfRandomTimesAreTheirFloor()
{
    QRandomGenerator random(20'260'301);
    RawSql sql(u":memory:"_s);
    sql.run(u"CREATE TABLE t (time REAL)"_s);
    const QString asked =
        u"SELECT %1 FROM (SELECT CAST(? AS REAL) AS time)"_s.arg(Schema::slot(u"time"_s));
    for (int attempt = 0; attempt < 2000; ++attempt) {
        const double time = random.generateDouble() * 4e9 - 2e9;
        const auto expected = static_cast<qint64>(std::floor(time / 900));
        QCOMPARE(sql.value(asked, {decimalText(time)}).toLongLong(), expected);
    }
}

QTEST_GUILESS_MAIN(SchemaTest)
#include "SchemaTest.moc"
