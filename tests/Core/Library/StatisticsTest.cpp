// SPDX-License-Identifier: Apache-2.0
#include "tests/Core/Library/FilledLibrary.h"

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

Calendar berlin()
{
    return {QTimeZone("Europe/Berlin"), QLocale::c()};
}

/// A quarter of an hour ahead of the world's other zones, so that days begin within a slot of an
/// hour but not within one of a quarter.
Calendar kathmandu()
{
    return {QTimeZone("Asia/Kathmandu"), QLocale::c()};
}

/// Days begin 7 minutes and 30 seconds off a quarter of an hour.
Calendar oddZone()
{
    return {QTimeZone(450), QLocale::c()};
}

Date berlinTime(int year, int month, int day, int hour, int minute)
{
    const QDateTime time(QDate(year, month, day), QTime(hour, minute), QTimeZone("Europe/Berlin"));
    return {static_cast<double>(time.toSecsSinceEpoch())};
}

} // namespace

/// How many, of what, on which days: from the summary, and counted for a search.
class StatisticsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { open(berlin); }
    void cleanup()
    {
        m_store.reset();
        QCOMPARE(disagreement(*m_folder), QString());
    }
    void anEmptyLibraryHasNothing();
    void aQuarterOfAnHourOfOneApplicationIsOneRow();
    void midnightPartsTheDays();
    void aDayOfTheClockChangeIsOneDay();
    void aTimeBeforeTheEpochCounts();
    void applicationsAreInPlainOrder();
    void theGreatestIdentityOfANameWins();
    void aDayWithinASlotBeginsWithIt();
    void aSearchIsCountedByDay();
    void manyMatchesAreCountedAsFewAre();
    void aSearchThatMatchesNothingHasNoDays();
    void aDateBeyondTheCalendarIsADayByItself();
    void countsAndStatisticsAgree();
    void aReaderSeesTheSame();

private:
    void open(const CalendarSource& calendar)
    {
        m_store.reset();
        m_folder = std::make_unique<LibraryFolder>();
        m_store = std::make_unique<HistoryStore>(
            HistoryStore::Writing{.root = m_folder->root(), .calendar = calendar});
    }
    void save(const QString& id, Date time, const QString& app = u"Editor"_s,
              const QString& bundle = u"org.example.editor"_s)
    {
        Memory memory = sampleMemory(id);
        memory.timestamp = time;
        memory.appName = app;
        memory.bundleID = bundle;
        m_store->save(memory, "jpeg").waitForFinished();
    }
    LibraryStats stats() { return m_store->stats().result(); }

    std::unique_ptr<LibraryFolder> m_folder;
    std::unique_ptr<HistoryStore> m_store;
};

void StatisticsTest::anEmptyLibraryHasNothing()
{
    QCOMPARE(stats(), LibraryStats());
    QVERIFY(m_store->dayCounts({}).result().isEmpty());
}

void StatisticsTest::aQuarterOfAnHourOfOneApplicationIsOneRow()
{
    RawSql sql(m_folder->database());
    save(u"A"_s, {900});
    save(u"B"_s, {1799.9});
    QCOMPARE(summary(sql), QStringList{u"1|Editor|2|8"_s});
    QCOMPARE(stats().count, 2);
    QCOMPARE(stats().bytes, 8);
    m_store->deleteMemory(u"A"_s).waitForFinished();
    QCOMPARE(summary(sql), QStringList{u"1|Editor|1|4"_s});
    m_store->deleteMemory(u"B"_s).waitForFinished();
    QCOMPARE(summary(sql), QStringList{});
    QCOMPARE(stats(), LibraryStats());
}

void StatisticsTest::midnightPartsTheDays()
{
    save(u"A"_s, berlinTime(2026, 5, 4, 23, 59));
    save(u"B"_s, berlinTime(2026, 5, 5, 0, 1));
    const QMap<Date, qsizetype> expected = {{berlinTime(2026, 5, 4, 0, 0), 1},
                                            {berlinTime(2026, 5, 5, 0, 0), 1}};
    QCOMPARE(stats().days, expected);
    QCOMPARE(m_store->dayCounts({}).result(), expected);
}

void StatisticsTest::aDayOfTheClockChangeIsOneDay()
{
    // Of 25 hours.
    save(u"A"_s, berlinTime(2026, 10, 25, 0, 0));
    save(u"B"_s, berlinTime(2026, 10, 25, 23, 59));
    const QMap<Date, qsizetype> expected = {{berlinTime(2026, 10, 25, 0, 0), 2}};
    QCOMPARE(stats().days, expected);
    QCOMPARE(m_store->dayCounts({}).result(), expected);
}

void StatisticsTest::aTimeBeforeTheEpochCounts()
{
    save(u"A"_s, {-0.5});
    save(u"B"_s, {-900});
    save(u"C"_s, {-900.5});
    RawSql sql(m_folder->database());
    QCOMPARE(sql.rows(u"SELECT slot, count FROM memory_slots ORDER BY slot"_s),
             (QStringList{u"-2|1"_s, u"-1|2"_s}));
    QCOMPARE(stats().days, (QMap<Date, qsizetype>{{berlinTime(1970, 1, 1, 0, 0), 3}}));
    QCOMPARE(m_store->dayCounts({}).result(), stats().days);
}

void StatisticsTest::applicationsAreInPlainOrder()
{
    for (const QString& app : {u"alpha"_s, u"Zed"_s, u"Éditeur"_s, u"Beta"_s, u""_s})
        save(u"of "_s + app, {1}, app);
    QCOMPARE(stats().apps, (QStringList{u""_s, u"Beta"_s, u"Zed"_s, u"alpha"_s, u"Éditeur"_s}));
}

void StatisticsTest::theGreatestIdentityOfANameWins()
{
    save(u"A"_s, {1}, u"Editor"_s, u"b.x"_s);
    save(u"B"_s, {2}, u"Editor"_s, u"a.x"_s);
    save(u"C"_s, {3}, u"Editor"_s, {});
    save(u"D"_s, {4}, u"Reader"_s, {});
    QCOMPARE(stats().bundles,
             (QHash<QString, QString>{{u"Editor"_s, u"b.x"_s}, {u"Reader"_s, u""_s}}));
}

void StatisticsTest::aDayWithinASlotBeginsWithIt()
{
    open(oddZone);
    // Midnight is 450 seconds before a whole day: within the last slot of the day before.
    constexpr double kMidnight = 86'400 - 450;
    save(u"A"_s, {kMidnight + 1});
    QCOMPARE(m_store->dayCounts({}).result(), (QMap<Date, qsizetype>{{{kMidnight}, 1}}));
    QCOMPARE(stats().days, (QMap<Date, qsizetype>{{{-450}, 1}}));
}

void StatisticsTest::aSearchIsCountedByDay()
{
    fill(*m_folder, 100, [](int number) { return number % 4 == 0 ? u"moss"_s : u"fern"_s; });
    save(u"A"_s, berlinTime(2026, 5, 4, 12, 0));
    RawSql(m_folder->database())
        .run(u"UPDATE memories SET timestamp = timestamp + 86400 WHERE timestamp < 50"_s);
    const Date first = berlinTime(1970, 1, 1, 0, 0);
    const Date second = berlinTime(1970, 1, 2, 0, 0);
    QCOMPARE(m_store->dayCounts({.query = u"mos"_s}).result(),
             (QMap<Date, qsizetype>{{first, 13}, {second, 12}}));
    QCOMPARE(m_store->dayCounts({.query = u"moss"_s, .app = u"Reader"_s}).result(),
             (QMap<Date, qsizetype>{}));
    QCOMPARE(m_store->dayCounts({.query = u"  "_s, .app = u"Editor"_s}).result(),
             (QMap<Date, qsizetype>{{first, 51}, {second, 49}, {berlinTime(2026, 5, 4, 0, 0), 1}}));
    // The summary is of other times now.
    RawSql(m_folder->database())
        .run(u"UPDATE memories SET timestamp = timestamp - 86400 WHERE timestamp < 90000 AND "
             "timestamp > 5000"_s);
}

void StatisticsTest::manyMatchesAreCountedAsFewAre()
{
    // Taken in another order than saved, and some of them gone.
    constexpr int kRows = 70'000;
    constexpr int kPrime = 7'919;
    constexpr double kHour = 3600;
    RawSql(m_folder->database())
        .run(u"BEGIN; WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i + 1 < "
             "%1) INSERT INTO memories SELECT i, i * %2 % %1 * 3600.0, 'Editor', '', iif(i % 7, "
             "'moss', 'fern'), i || '.jpg', 1, '', '' FROM n;"
             "DELETE FROM memories WHERE id % 11 = 3; COMMIT"_s
                 .replace(u"%1"_s, QString::number(kRows))
                 .replace(u"%2"_s, QString::number(kPrime)));
    QMap<Date, qsizetype> moss;
    QMap<Date, qsizetype> fern;
    for (int number = 0; number < kRows; ++number) {
        const double hours = static_cast<double>(qint64{number} * kPrime % kRows);
        if (number % 11 != 3)
            ++(number % 7 ? moss : fern)[{hours * kHour}];
    }
    const auto byDay = [](const QMap<Date, qsizetype>& byTime) {
        QMap<Date, qsizetype> days;
        for (auto time = byTime.cbegin(); time != byTime.cend(); ++time)
            days[berlin().dateInterval(Calendar::Component::Day, time.key())->start] += *time;
        return days;
    };
    QVERIFY(moss.size() > 50'000);
    QCOMPARE(m_store->dayCounts({.query = u"moss"_s}).result(), byDay(moss));
    QCOMPARE(m_store->dayCounts({.query = u"mo"_s}).result(), byDay(moss));
    QCOMPARE(m_store->dayCounts({.query = u"m"_s, .app = u"Editor"_s}).result(), byDay(moss));
    QCOMPARE(m_store->dayCounts({.query = u"fern"_s}).result(), byDay(fern));
    QCOMPARE(m_store->dayCounts({.query = u"f"_s}).result(), byDay(fern));
}

void StatisticsTest::aSearchThatMatchesNothingHasNoDays()
{
    fill(*m_folder, 3);
    QVERIFY(m_store->dayCounts({.query = u"!!!"_s}).result().isEmpty());
    QVERIFY(m_store->dayCounts({.query = u"nowhere"_s}).result().isEmpty());
}

void StatisticsTest::aDateBeyondTheCalendarIsADayByItself()
{
    save(u"A"_s, {1e17});
    save(u"B"_s, {1e17});
    QCOMPARE(m_store->dayCounts({}).result(), (QMap<Date, qsizetype>{{{1e17}, 2}}));
    QCOMPARE(stats().days.values(), QList<qsizetype>{2});
}

void StatisticsTest::countsAndStatisticsAgree()
{
    open(kathmandu);
    for (int number = 0; number < 60; ++number)
        save(QString::number(number), {number * 7'919.0 - 200'000});
    QVERIFY(stats().days.size() > 5);
    QCOMPARE(stats().days, m_store->dayCounts({}).result());
    QCOMPARE(stats().count, 60);
}

void StatisticsTest::aReaderSeesTheSame()
{
    fill(*m_folder, 3);
    HistoryStore reader(HistoryStore::ReadingOnly{m_folder->root(), berlin});
    QCOMPARE(reader.stats().result(), stats());
}

QTEST_GUILESS_MAIN(StatisticsTest)
#include "StatisticsTest.moc"
