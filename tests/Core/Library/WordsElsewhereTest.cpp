// SPDX-License-Identifier: Apache-2.0
#include "tests/Core/Library/OldLibraries.h"
#include "tests/Core/Library/RawSql.h"
#include "tests/Core/Library/Summary.h"
#include "tests/Fakes/BadDisk.h"

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

constexpr int kRows = 800;
constexpr int kLettersEach = 12'000;

/// Puts rows into a library that are more than SQLite keeps in memory of its own accord, in every
/// way that it sorts them or keeps them for undoing. Each has the word "moss", and all have their
/// identities and names of applications in another order than their times.
void fillAmply(RawSql& sql, const QString& columns)
{
    sql.run(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < %1) "
            "INSERT INTO memories (%2) SELECT 'id' || i, i * 7919 % 1000003, "
            "hex(zeroblob(1500)) || (i * 31 % 3), 'org.example', 'moss ' || hex(randomblob(%3)), "
            "i || '.jpg', 1 FROM n"_s.arg(QString::number(kRows), columns,
                                          QString::number(kLettersEach / 2)));
}

const QString kColumns = u"id, timestamp, app_name, bundle_id, text, filename, bytes"_s;

} // namespace

/// SQLite has files of its own beside the database: what it sorts, and what it would undo, goes
/// there when there is much of it. With them the words would be outside the library, and stay.
class WordsElsewhereTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void sqliteByItselfWritesElsewhere_data();
    void sqliteByItselfWritesElsewhere();
    void nothingIsWrittenElsewhere_data();
    void nothingIsWrittenElsewhere();
    void upgradingWritesNothingElsewhere_data();
    void upgradingWritesNothingElsewhere();

private:
    /// How often a file in the folder for temporary ones is made or written.
    template <typename Action>
    int callsElsewhere(Action&& action) const
    {
        const BadDisk watched(m_elsewhere.path(), 0, BadDisk::Then::FailOnce, 0);
        action();
        return BadDisk::calls();
    }

    bool putCopy(const LibraryFolder& folder) const
    {
        return QDir().mkpath(folder.root()) &&
               QFile::copy(m_template.database(), folder.database());
    }

    QTemporaryDir m_elsewhere;
    /// With rows, and closed.
    LibraryFolder m_template;
};

void WordsElsewhereTest::initTestCase()
{
    // SQLite asks for it once, before all else.
    QVERIFY(qputenv("SQLITE_TMPDIR", m_elsewhere.path().toLocal8Bit()));
    HistoryStore store(HistoryStore::Writing{.root = m_template.root()});
    RawSql raw(m_template.database());
    fillAmply(raw, kColumns);
}

void WordsElsewhereTest::sqliteByItselfWritesElsewhere_data()
{
    QTest::addColumn<QString>("sql");
    QTest::newRow("sorting") << u"SELECT * FROM memories ORDER BY app_name, text"_s;
    QTest::newRow("undoing") << u"BEGIN; DELETE FROM memories; ROLLBACK"_s;
}

void WordsElsewhereTest::sqliteByItselfWritesElsewhere()
{
    QFETCH(QString, sql);
    const LibraryFolder folder;
    QVERIFY(putCopy(folder));
    RawSql raw(folder.database());
    QVERIFY(callsElsewhere([&] { raw.run(sql); }) > 0);
}

void WordsElsewhereTest::nothingIsWrittenElsewhere_data()
{
    using Action = std::function<void(HistoryStore&)>;
    QTest::addColumn<Action>("act");
    QTest::addColumn<bool>("isReader");
    const auto row = [](const char* name, const Action& act) {
        QTest::addRow("%s", name) << act << false;
    };
    const auto search = [](const char* name, const Action& act) {
        QTest::addRow("%s", name) << act << false;
        QTest::addRow("%s, by a reader", name) << act << true;
    };
    search("listing all", [](HistoryStore& store) {
        QCOMPARE(store.fetch({.limit = kRows, .withText = true}).result().size(), kRows);
    });
    search("listing a word's", [](HistoryStore& store) {
        QCOMPARE(
            store.fetch({.query = u"moss"_s, .limit = kRows, .withText = true}).result().size(),
            kRows);
    });
    search("listing an application's", [](HistoryStore& store) {
        const QString app = store.stats().result().apps.first();
        QVERIFY(!store.fetch({.app = app, .limit = kRows, .withText = true}).result().isEmpty());
    });
    search("answering a question", [](HistoryStore& store) {
        QCOMPARE(store.candidates({.question = u"moss"_s, .limit = 200}).result().size(), 200);
    });
    search("counting by day", [](HistoryStore& store) {
        QVERIFY(!store.dayCounts({.query = u"moss"_s}).result().isEmpty());
    });
    search("summing up",
           [](HistoryStore& store) { QCOMPARE(store.stats().result().count, kRows); });
    search("what is not read yet", [](HistoryStore& store) {
        QCOMPARE(store.withoutEmbedding(u"m"_s, kRows).result().size(), kRows);
    });
    row("removing one",
        [](HistoryStore& store) { store.deleteMemory(u"id400"_s).waitForFinished(); });
    row("removing a half", [](HistoryStore& store) { store.prune({500'000}).waitForFinished(); });
    row("removing all", [](HistoryStore& store) { store.deleteAll().waitForFinished(); });
}

void WordsElsewhereTest::nothingIsWrittenElsewhere()
{
    QFETCH(std::function<void(HistoryStore&)>, act);
    QFETCH(bool, isReader);
    const LibraryFolder folder;
    QVERIFY(putCopy(folder));
    HistoryStore writer(HistoryStore::Writing{.root = folder.root()});
    HistoryStore reader(HistoryStore::ReadingOnly{.root = folder.root()});
    QCOMPARE(callsElsewhere([&] { act(isReader ? reader : writer); }), 0);
}

void WordsElsewhereTest::upgradingWritesNothingElsewhere_data()
{
    QTest::addColumn<int>("version");
    for (const int version : {0, 2, 3, 4})
        QTest::addRow("version %d", version) << version;
}

void WordsElsewhereTest::upgradingWritesNothingElsewhere()
{
    QFETCH(int, version);
    const LibraryFolder folder;
    QVERIFY(putOldDatabase(version, folder));
    {
        RawSql raw(folder.database());
        fillAmply(raw, kColumns);
    }
    QCOMPARE(callsElsewhere(
                 [&folder] { HistoryStore store(HistoryStore::Writing{.root = folder.root()}); }),
             0);
    RawSql raw(folder.database());
    QCOMPARE(summary(raw), recount(raw));
}

QTEST_GUILESS_MAIN(WordsElsewhereTest)
#include "WordsElsewhereTest.moc"
