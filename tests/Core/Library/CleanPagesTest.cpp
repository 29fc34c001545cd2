// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/CleanPages.h"

#include "MossbankCore/Library/Database.h"
#include "tests/Core/Library/LibraryTesting.h"
#include "tests/Core/Library/RawSql.h"

#include <QByteArrayMatcher>
#include <QRandomGenerator>
#include <QSet>

#include <algorithm>
#include <vector>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

constexpr std::size_t kPage = 512;
constexpr unsigned char kOld = 0xee;

/// A page full of old bytes, with such a header at `header`.
std::vector<unsigned char> page(unsigned char kind, int cells, int firstCell,
                                std::size_t header = 0)
{
    std::vector<unsigned char> bytes(kPage, kOld);
    const std::vector<unsigned char> start = {kind,
                                              0,
                                              0,
                                              static_cast<unsigned char>(cells >> 8),
                                              static_cast<unsigned char>(cells),
                                              static_cast<unsigned char>(firstCell >> 8),
                                              static_cast<unsigned char>(firstCell)};
    std::ranges::copy(start, bytes.begin() + static_cast<std::ptrdiff_t>(header));
    return bytes;
}

} // namespace

/// What lies unused in a page of the database is zeroed, and nothing else.
class CleanPagesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theUnusedPartIsZeroed_data();
    void theUnusedPartIsZeroed();
    void whatIsNoSuchPageStays_data();
    void whatIsNoSuchPageStays();
    void aDatabaseKeepsWhatItHolds_data();
    void aDatabaseKeepsWhatItHolds();
    void nothingDeletedStaysInTheFile();
};

void CleanPagesTest::theUnusedPartIsZeroed_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("cells");
    QTest::addColumn<int>("firstCell");
    QTest::addColumn<bool>("isFirst");
    QTest::addColumn<int>("from");
    QTest::newRow("leaf of a table") << 13 << 3 << 400 << false << 8 + 6;
    QTest::newRow("leaf of an index") << 10 << 1 << 400 << false << 8 + 2;
    QTest::newRow("inner page of a table") << 5 << 3 << 400 << false << 12 + 6;
    QTest::newRow("inner page of an index") << 2 << 0 << 512 << false << 12;
    QTest::newRow("the first page") << 13 << 2 << 300 << true << 100 + 8 + 4;
    QTest::newRow("full") << 13 << 196 << 400 << false << 400;
}

void CleanPagesTest::theUnusedPartIsZeroed()
{
    QFETCH(int, kind);
    QFETCH(int, cells);
    QFETCH(int, firstCell);
    QFETCH(bool, isFirst);
    QFETCH(int, from);
    const auto before = page(static_cast<unsigned char>(kind), cells, firstCell, isFirst ? 100 : 0);
    auto expected = before;
    std::fill(expected.begin() + from, expected.begin() + firstCell, 0);
    auto after = before;
    CleanPages::clean(after, isFirst, 1000);
    QCOMPARE(after, expected);
    // Once more changes nothing.
    CleanPages::clean(after, isFirst, 1000);
    QCOMPARE(after, expected);
}

void CleanPagesTest::whatIsNoSuchPageStays_data()
{
    QTest::addColumn<std::vector<unsigned char>>("bytes");
    QTest::addColumn<qint64>("pages");
    QTest::newRow("an overflow page") << page(0, 3, 400) << qint64(1000);
    QTest::newRow("another kind") << page(7, 3, 400) << qint64(1000);
    // 0x0d000003 as the number of a page that is there.
    QTest::newRow("what may be the number of a page") << page(13, 3, 400) << qint64(0x0d000003);
    QTest::newRow("cells beyond the page") << page(13, 3, 600) << qint64(1000);
    QTest::newRow("cells before the list") << page(13, 100, 50) << qint64(1000);
}

void CleanPagesTest::whatIsNoSuchPageStays()
{
    QFETCH(std::vector<unsigned char>, bytes);
    QFETCH(qint64, pages);
    auto after = bytes;
    CleanPages::clean(after, false, pages);
    QCOMPARE(after, bytes);
}

void CleanPagesTest::aDatabaseKeepsWhatItHolds_data()
{
    QTest::addColumn<QString>("vacuum");
    QTest::newRow("as it is") << u"NONE"_s;
    // Has pages that tell where others belong.
    QTest::newRow("that gives pages back") << u"FULL"_s;
}

void CleanPagesTest::aDatabaseKeepsWhatItHolds()
{
    QFETCH(QString, vacuum);
    const LibraryFolder folder;
    const QString path = folder.beside(u"some.sqlite"_s);
    {
        auto database = Database::open(path, Database::Access::ReadWrite);
        QVERIFY(database);
        database->execute(
            u"PRAGMA auto_vacuum=%1; PRAGMA journal_mode=WAL; PRAGMA secure_delete=ON;"
            "CREATE TABLE t (id INTEGER PRIMARY KEY, text TEXT, large BLOB);"
            "CREATE INDEX t_text ON t(text);"
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 4000) "
            "INSERT INTO t SELECT i, 'row ' || (i * 7919 % 4001), "
            "CASE WHEN i % 5 = 0 THEN randomblob(9000) END FROM n;"
            "PRAGMA wal_checkpoint(TRUNCATE)"_s.arg(vacuum));
    }
    {
        // Once more, so that what kind of database it is has to be read.
        auto database = Database::open(path, Database::Access::ReadWrite);
        QVERIFY(database);
        database->execute(u"PRAGMA secure_delete=ON; DELETE FROM t WHERE id % 3 = 0;"
                          "UPDATE t SET text = text || ' longer' WHERE id % 5 = 0;"
                          "PRAGMA wal_checkpoint(TRUNCATE)"_s);
    }
    // Read past the layer.
    RawSql sql(path);
    QCOMPARE(sql.value(u"PRAGMA integrity_check"_s), u"ok"_s);
    QCOMPARE(sql.value(u"SELECT count(*) FROM t"_s), u"2667"_s);
    QCOMPARE(sql.value(u"SELECT sum(length(large)) FROM t"_s), QString::number(534 * 9000));
    QCOMPARE(sql.value(u"SELECT count(*) FROM t WHERE text LIKE 'row %'"_s), u"2667"_s);
}

void CleanPagesTest::nothingDeletedStaysInTheFile()
{
    QRandomGenerator random(20);
    const QByteArrayMatcher trace("forget-me-");
    qsizetype deleted = 0;
    for (int round = 0; round < 40; ++round) {
        const LibraryFolder folder;
        const QString path = folder.beside(u"some.sqlite"_s);
        auto database = Database::open(path, Database::Access::ReadWrite);
        QVERIFY(database);
        database->execute(
            u"PRAGMA journal_mode=WAL; PRAGMA secure_delete=ON;"
            "CREATE TABLE t (number INTEGER PRIMARY KEY, id TEXT UNIQUE, text TEXT)"_s);
        QSet<int> there;
        int next = 0;
        for (int step = 0; step < 12; ++step) {
            database->execute(u"BEGIN"_s);
            for (int added = random.bounded(80); added > 0; --added, ++next) {
                there.insert(next);
                // Rows of many sizes, in an index where they come in no order.
                database->execute(
                    u"INSERT INTO t VALUES (%2, '%1-forget-me-%2.', 'forget-me-%2 %3')"_s
                        .arg(random.generate(), 8, 16)
                        .arg(next)
                        .arg(QString(random.bounded(900), u'x')));
            }
            const int from = random.bounded(next + 1);
            const int to = from + random.bounded(60);
            database->execute(
                u"DELETE FROM t WHERE number BETWEEN %1 AND %2; COMMIT"_s.arg(from).arg(to));
            for (int number = from; number <= to; ++number)
                deleted += there.remove(number) ? 1 : 0;
        }
        database->execute(u"PRAGMA wal_checkpoint(TRUNCATE)"_s);
        const QByteArray bytes = contents(path);
        int found = 0;
        for (qsizetype at = trace.indexIn(bytes); at >= 0; at = trace.indexIn(bytes, at + 1)) {
            QByteArray digits = bytes.mid(at + trace.pattern().size(), 6);
            const auto end = std::ranges::find_if_not(
                digits, [](char letter) { return letter >= '0' && letter <= '9'; });
            const int number = digits.first(end - digits.begin()).toInt();
            QVERIFY2(there.contains(number), qPrintable(u"round %1: %2"_s.arg(round).arg(number)));
            ++found;
        }
        // Each once in the table and once in its index.
        QCOMPARE(found, 3 * there.size());
    }
    QVERIFY(deleted > 1000);
}

QTEST_GUILESS_MAIN(CleanPagesTest)
#include "CleanPagesTest.moc"
