// SPDX-License-Identifier: Apache-2.0
//
// What goes into the library comes out again: every value travels as text.
#include "MossbankCore/Library/Database.h"
#include "tests/Core/Library/LibraryTesting.h"

#include <QRandomGenerator>

#include <sqlite3.h>

#include <bit>
#include <cmath>

using namespace mossbank;
using namespace Qt::StringLiterals;

class RoundTripTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void textComesBackAsItWent_data();
    void textComesBackAsItWent();
    void aTextEndsWhereAZeroStands();
    void halfACharacterIsReplacedAndHurtsNothing();
    void aTitleOfAMegabyteIsKept();
    void sqlInTextIsText();
    void decimalTextIsShortAndReadsBack();
    void timestampsComeBackToTheLastBit_data();
    void timestampsComeBackToTheLastBit();
    void timestampsCompareWithTextAsNumbers();
    void nullsReadAsNothing();

private:
    /// Saves `memory` in a library of its own and reads it back.
    static Memory saved(Memory memory);
};

Memory RoundTripTest::saved(Memory memory)
{
    const LibraryFolder folder;
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    store.save(std::move(memory), "jpeg").waitForFinished();
    const auto found = store.fetch({.limit = 9, .withText = true}).result();
    return found.size() == 1 ? found.first() : Memory{};
}

void RoundTripTest::textComesBackAsItWent_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << u""_s;
    QTest::newRow("quotes") << u"it's \"so\" `and` so ''"_s;
    QTest::newRow("what looks like a number") << u"007"_s;
    QTest::newRow("what looks like a float") << u"1.0e3"_s;
    QTest::newRow("what looks like null") << u"NULL"_s;
    QTest::newRow("an emoji of several signs") << u"👩🏽‍🚀 🇹🇷 🌿"_s;
    QTest::newRow("Turkish") << u"İstanbul'da kağıt, ığüşöç"_s;
    QTest::newRow("marks apart from their letters") << u"e\u0301 i\u0307"_s;
    QTest::newRow("right to left") << u"\u202Eשלום\u202C"_s;
    QTest::newRow("line ends and tabs") << u"a\r\nb\tc\u2028d\n"_s;
    QTest::newRow("control characters") << u"\u001b[31mred\u0007\u009b"_s;
    QTest::newRow("a percent and a number") << u"%1 %2 ?1 :a @b $c"_s;
    QTest::newRow("a mark of byte order inside") << u"a\uFEFFb"_s;
}

void RoundTripTest::textComesBackAsItWent()
{
    QFETCH(QString, text);
    Memory memory = sampleMemory(u"A"_s);
    memory.appName = text;
    memory.bundleID = text;
    memory.text = text;
    memory.title = text;
    memory.link = text;
    memory.id = u"id "_s + text;
    memory.bytes = 4;
    QCOMPARE(saved(memory), memory);
}

void RoundTripTest::aTextEndsWhereAZeroStands()
{
    Memory memory = sampleMemory(u"A"_s);
    memory.title = u"before"_s + QChar(QChar::Null) + u"after"_s;
    QCOMPARE(saved(memory).title, u"before"_s);
}

void RoundTripTest::halfACharacterIsReplacedAndHurtsNothing()
{
    Memory memory = sampleMemory(u"A"_s);
    memory.title = u"a"_s + QChar(0xD83D) + u"b"_s + QChar(0xDE00) + u"c"_s;
    const QString title = saved(memory).title;
    QCOMPARE(title, u"a?b?c"_s);
}

void RoundTripTest::aTitleOfAMegabyteIsKept()
{
    Memory memory = sampleMemory(u"A"_s);
    memory.title = u"ağ "_s.repeated(262'144);
    QVERIFY(memory.title.toUtf8().size() >= 1 << 20);
    const QString title = saved(memory).title;
    QVERIFY(title == memory.title);
}

void RoundTripTest::sqlInTextIsText()
{
    Memory memory = sampleMemory(u"A"_s);
    memory.appName = u"x'); DROP TABLE memories; --"_s;
    memory.bytes = 4;
    QCOMPARE(saved(memory), memory);
}

void RoundTripTest::decimalTextIsShortAndReadsBack()
{
    QCOMPARE(decimalText(0), u"0"_s);
    QCOMPARE(decimalText(-1.5), u"-1.5"_s);
    QCOMPARE(decimalText(1'700'000'001), u"1700000001"_s);
    // Shorter than all the zeros.
    QCOMPARE(decimalText(1'700'000'000), u"1.7e+09"_s);
    QCOMPARE(decimalText(1'700'000'000.25), u"1700000000.25"_s);
    QCOMPARE(decimalText(0.1), u"0.1"_s);
    QRandomGenerator random(7);
    for (int attempt = 0; attempt < 20'000; ++attempt) {
        const double value = std::bit_cast<double>(random.generate64());
        if (std::isfinite(value))
            QCOMPARE(decimalText(value).toDouble(), value);
    }
}

void RoundTripTest::timestampsComeBackToTheLastBit_data()
{
    QTest::addColumn<double>("earliest");
    QTest::addColumn<double>("latest");
    QTest::addColumn<double>("steps");
    constexpr double kAnyDouble = 0;
    QTest::newRow("any time of these centuries") << -4e9 << 4e9 << kAnyDouble;
    QTest::newRow("any time near 1970") << -1e6 << 1e6 << kAnyDouble;
    QTest::newRow("microseconds of our days") << 1e9 << 4.1e9 << 1e6;
    QTest::newRow("milliseconds of our days") << 1e9 << 4.1e9 << 1e3;
}

void RoundTripTest::timestampsComeBackToTheLastBit()
{
    QFETCH(double, earliest);
    QFETCH(double, latest);
    QFETCH(double, steps);
    auto database = Database::open(u":memory:"_s, Database::Access::ReadWrite);
    QVERIFY(database);
    database->execute(u"CREATE TABLE t (timestamp REAL NOT NULL); BEGIN"_s);
    QRandomGenerator random(20'260'301);
    QList<double> times = {-900, -1.5, -0.1, 0, 0.1, 899.9, 1'700'000'000.25, 4'102'444'799.999};
    for (int attempt = 0; attempt < 50'000; ++attempt) {
        const double time = earliest + random.generateDouble() * (latest - earliest);
        times.append(steps > 0 ? std::round(time * steps) / steps : time);
    }
    for (const double time : std::as_const(times)) {
        Statement insert = database->statement(u"INSERT INTO t VALUES (?)"_s);
        insert.bind({decimalText(time)});
        insert.step();
    }
    Statement rows = database->statement(u"SELECT timestamp FROM t ORDER BY rowid"_s);
    qsizetype changed = 0;
    for (const double time : std::as_const(times)) {
        QVERIFY(rows.step());
        const double back = rows.real(0);
        if (back == time)
            continue;
        ++changed;
        // Never more than the last bit, a quarter of a microsecond in our days.
        QVERIFY(back == std::nextafter(time, back));
    }
    // SQLite before 3.42 reads one text of seventeen digits in some ten thousand that far off.
    const bool readsEveryDigit = sqlite3_libversion_number() >= 3'042'000 || steps == 1e3;
    if (readsEveryDigit)
        QCOMPARE(changed, 0);
    else
        QVERIFY2(changed < times.size() / 1000, qPrintable(QString::number(changed)));
}

void RoundTripTest::timestampsCompareWithTextAsNumbers()
{
    auto database = Database::open(u":memory:"_s, Database::Access::ReadWrite);
    database->execute(u"CREATE TABLE t (timestamp REAL NOT NULL);"
                      "INSERT INTO t VALUES (9), (10.5), (100), (-3)"_s);
    Statement rows = database->statement(
        u"SELECT timestamp FROM t WHERE timestamp >= ? AND timestamp < ? ORDER BY 1"_s);
    rows.bind({decimalText(9), decimalText(100)});
    QVERIFY(rows.step());
    QCOMPARE(rows.real(0), 9.0);
    QVERIFY(rows.step());
    QCOMPARE(rows.real(0), 10.5);
    QVERIFY(!rows.step());

    database->execute(u"INSERT INTO t VALUES (1699999999.5), (1700000000)"_s);
    Statement later = database->statement(u"SELECT timestamp FROM t WHERE timestamp >= ?"_s);
    later.bind({decimalText(1'700'000'000)});
    QVERIFY(later.step());
    QCOMPARE(later.real(0), 1'700'000'000.0);
    QVERIFY(!later.step());
}

void RoundTripTest::nullsReadAsNothing()
{
    auto database = Database::open(u":memory:"_s, Database::Access::ReadWrite);
    Statement row = database->statement(u"SELECT NULL, ''"_s);
    QVERIFY(row.step());
    QCOMPARE(row.text(0), QString());
    QCOMPARE(row.real(0), 0.0);
    QCOMPARE(row.integer(0), 0);
    QCOMPARE(row.text(1), QString());
    QCOMPARE(failure<StoreError>([&] { database->statement(u""_s); }), u"not an error"_s);
    QCOMPARE(failure<StoreError>([&] { database->statement(u"SELEC 1"_s); }),
             u"near \"SELEC\": syntax error"_s);
}

QTEST_GUILESS_MAIN(RoundTripTest)
#include "RoundTripTest.moc"
