// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Support/Calendar.h"

#include <QElapsedTimer>
#include <QTest>

#include <cmath>
#include <limits>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;
using Component = Calendar::Component;

/// "2024-03-30T23:00:00Z", with fractions where given.
Date moment(const QString& iso)
{
    const QDateTime parsed = QDateTime::fromString(iso, Qt::ISODateWithMs);
    Q_ASSERT(parsed.isValid());
    return {static_cast<double>(parsed.toMSecsSinceEpoch()) / 1000};
}

Calendar calendarOf(const QString& zone)
{
    return {QTimeZone(zone.toLatin1()), QLocale::c()};
}

/// Sanitizers make everything slower, by how much is not this test's business.
#if defined(__SANITIZE_ADDRESS__)
constexpr double kSlowness = 50;
#else
constexpr double kSlowness = 1;
#endif

QString written(Date date)
{
    return QDateTime::fromMSecsSinceEpoch(qint64(std::llround(date.secondsSince1970 * 1000)),
                                          Qt::UTC)
        .toString(Qt::ISODateWithMs);
}

QString written(const std::optional<DateInterval>& interval)
{
    return interval ? written(interval->start) + u" to "_s + written(interval->end) : u"none"_s;
}

} // namespace

class CalendarTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void aDayLiesBetweenItsMidnights_data();
    void aDayLiesBetweenItsMidnights();
    void anHourEndsWhereTheClocksChange_data();
    void anHourEndsWhereTheClocksChange();

    void aMomentJustBeforeMidnightIsOfTheDayBefore_data();
    void aMomentJustBeforeMidnightIsOfTheDayBefore();
    void aMomentBeyondReachHasNoDayAndNoHour_data();
    void aMomentBeyondReachHasNoDayAndNoHour();
    void theFarPastAndFutureHaveDays_data();
    void theFarPastAndFutureHaveDays();

    void aDayGivenByItsNumbersStartsAtItsFirstMoment_data();
    void aDayGivenByItsNumbersStartsAtItsFirstMoment();
    void aDayThatIsNotInTheYearHasNoStart_data();
    void aDayThatIsNotInTheYearHasNoStart();

    void anUnknownZoneCountsAsUtc();
    void theTimeOfDayIsWrittenAsTheLocaleWritesIt_data();
    void theTimeOfDayIsWrittenAsTheLocaleWritesIt();
    void askingForADayOrAnHourIsCheap();
};

void CalendarTest::initTestCase()
{
    QVERIFY2(QTimeZone("Europe/Berlin").isValid(),
             "The rules of time zones are missing: install the package tzdata.");
}

void CalendarTest::aDayLiesBetweenItsMidnights_data()
{
    QTest::addColumn<QString>("zone");
    QTest::addColumn<QString>("date");
    QTest::addColumn<QString>("start");
    QTest::addColumn<QString>("end");
    const auto row = [](const char* name, const char* zone, const char* date, const char* start,
                        const char* end) {
        QTest::newRow(name) << QString::fromLatin1(zone) << QString::fromLatin1(date)
                            << QString::fromLatin1(start) << QString::fromLatin1(end);
    };
    row("an ordinary day", "Europe/Berlin", "2024-06-15T12:00:00Z", "2024-06-14T22:00:00Z",
        "2024-06-15T22:00:00Z");
    row("its very start", "Europe/Berlin", "2024-06-14T22:00:00Z", "2024-06-14T22:00:00Z",
        "2024-06-15T22:00:00Z");
    row("a day of 23 hours", "Europe/Berlin", "2024-03-31T12:00:00Z", "2024-03-30T23:00:00Z",
        "2024-03-31T22:00:00Z");
    row("a day of 25 hours", "Europe/Berlin", "2024-10-27T12:00:00Z", "2024-10-26T22:00:00Z",
        "2024-10-27T23:00:00Z");
    row("its hour told again", "Europe/Berlin", "2024-10-27T01:30:00Z", "2024-10-26T22:00:00Z",
        "2024-10-27T23:00:00Z");

    row("no midnight, Sao Paulo", "America/Sao_Paulo", "2017-10-15T12:00:00Z",
        "2017-10-15T03:00:00Z", "2017-10-16T02:00:00Z");
    row("before no midnight, Sao Paulo", "America/Sao_Paulo", "2017-10-15T02:59:59.999Z",
        "2017-10-14T03:00:00Z", "2017-10-15T03:00:00Z");
    row("no midnight, Beirut", "Asia/Beirut", "2022-03-27T12:00:00Z", "2022-03-26T22:00:00Z",
        "2022-03-27T21:00:00Z");
    row("no midnight, Cairo", "Africa/Cairo", "2023-04-28T12:00:00Z", "2023-04-27T22:00:00Z",
        "2023-04-28T21:00:00Z");
    row("no midnight, Havana", "America/Havana", "2023-03-12T12:00:00Z", "2023-03-12T05:00:00Z",
        "2023-03-13T04:00:00Z");

    row("midnight told twice, Havana", "America/Havana", "2023-11-05T04:30:00Z",
        "2023-11-05T04:00:00Z", "2023-11-06T05:00:00Z");
    row("after midnight told twice, Havana", "America/Havana", "2023-11-05T05:30:00Z",
        "2023-11-05T04:00:00Z", "2023-11-06T05:00:00Z");
    row("back at midnight, the evening, Sao Paulo", "America/Sao_Paulo", "2018-02-18T01:30:00Z",
        "2018-02-17T02:00:00Z", "2018-02-18T03:00:00Z");
    row("back at midnight, the evening again, Sao Paulo", "America/Sao_Paulo",
        "2018-02-18T02:30:00Z", "2018-02-17T02:00:00Z", "2018-02-18T03:00:00Z");
    row("back at midnight, the day after, Sao Paulo", "America/Sao_Paulo", "2018-02-18T03:00:00Z",
        "2018-02-18T03:00:00Z", "2018-02-19T03:00:00Z");
    row("back at midnight, Cairo", "Africa/Cairo", "2023-10-26T21:30:00Z", "2023-10-25T21:00:00Z",
        "2023-10-26T22:00:00Z");
    // Where the clocks go back a minute past midnight, the first of the two midnights counts.
    row("back past midnight, the minute", "America/St_Johns", "2010-11-07T02:30:30Z",
        "2010-11-07T02:30:00Z", "2010-11-08T03:30:00Z");
    row("back past midnight, the evening again", "America/St_Johns", "2010-11-07T03:00:00Z",
        "2010-11-07T02:30:00Z", "2010-11-08T03:30:00Z");
    row("back past midnight, midnight again", "America/St_Johns", "2010-11-07T03:30:00Z",
        "2010-11-07T02:30:00Z", "2010-11-08T03:30:00Z");
    row("back past midnight, the day before", "America/St_Johns", "2010-11-07T02:29:59Z",
        "2010-11-06T02:30:00Z", "2010-11-07T02:30:00Z");

    row("before the skipped day", "Pacific/Apia", "2011-12-30T09:59:00Z", "2011-12-29T10:00:00Z",
        "2011-12-30T10:00:00Z");
    row("after the skipped day", "Pacific/Apia", "2011-12-30T10:00:00Z", "2011-12-30T10:00:00Z",
        "2011-12-31T10:00:00Z");
    row("half an hour forward", "Australia/Lord_Howe", "2023-10-01T02:00:00Z",
        "2023-09-30T13:30:00Z", "2023-10-01T13:00:00Z");
    row("half an hour back", "Australia/Lord_Howe", "2023-04-02T02:00:00Z", "2023-04-01T13:00:00Z",
        "2023-04-02T13:30:00Z");

    row("the last day before 1970", "UTC", "1969-12-31T23:59:59.999Z", "1969-12-31T00:00:00Z",
        "1970-01-01T00:00:00Z");
    row("the first of 1970", "UTC", "1970-01-01T00:00:00Z", "1970-01-01T00:00:00Z",
        "1970-01-02T00:00:00Z");
    row("1955", "Asia/Kolkata", "1955-05-05T00:00:00Z", "1955-05-04T18:30:00Z",
        "1955-05-05T18:30:00Z");
    row("by the sun, before zones", "Europe/Berlin", "1850-06-15T12:00:00Z", "1850-06-14T23:06:32Z",
        "1850-06-15T23:06:32Z");
}

void CalendarTest::aDayLiesBetweenItsMidnights()
{
    QFETCH(QString, zone);
    QFETCH(QString, date);
    QFETCH(QString, start);
    QFETCH(QString, end);
    QCOMPARE(written(calendarOf(zone).dateInterval(Component::Day, moment(date))),
             written(DateInterval{moment(start), moment(end)}));
}

void CalendarTest::anHourEndsWhereTheClocksChange_data()
{
    QTest::addColumn<QString>("zone");
    QTest::addColumn<QString>("date");
    QTest::addColumn<QString>("start");
    QTest::addColumn<QString>("end");
    const auto row = [](const char* name, const char* zone, const char* date, const char* start,
                        const char* end) {
        QTest::newRow(name) << QString::fromLatin1(zone) << QString::fromLatin1(date)
                            << QString::fromLatin1(start) << QString::fromLatin1(end);
    };
    row("an ordinary hour", "Europe/Berlin", "2024-06-15T12:34:56.789Z", "2024-06-15T12:00:00Z",
        "2024-06-15T13:00:00Z");
    row("its very start", "Europe/Berlin", "2024-06-15T12:00:00Z", "2024-06-15T12:00:00Z",
        "2024-06-15T13:00:00Z");
    row("told twice, first", "Europe/Berlin", "2024-10-27T00:30:00Z", "2024-10-27T00:00:00Z",
        "2024-10-27T01:00:00Z");
    row("told twice, again", "Europe/Berlin", "2024-10-27T01:30:00Z", "2024-10-27T01:00:00Z",
        "2024-10-27T02:00:00Z");
    row("before the gap", "Europe/Berlin", "2024-03-31T00:59:59.999Z", "2024-03-31T00:00:00Z",
        "2024-03-31T01:00:00Z");
    row("at the change", "Europe/Berlin", "2024-03-31T01:00:00Z", "2024-03-31T01:00:00Z",
        "2024-03-31T02:00:00Z");
    row("half past", "Asia/Kolkata", "2024-01-01T00:10:00Z", "2023-12-31T23:30:00Z",
        "2024-01-01T00:30:00Z");
    row("a quarter to", "Asia/Kathmandu", "2024-01-01T00:20:00Z", "2024-01-01T00:15:00Z",
        "2024-01-01T01:15:00Z");
    row("half an hour back, before", "Australia/Lord_Howe", "2023-04-01T14:45:00Z",
        "2023-04-01T14:00:00Z", "2023-04-01T15:00:00Z");
    row("half an hour back, after", "Australia/Lord_Howe", "2023-04-01T15:10:00Z",
        "2023-04-01T15:00:00Z", "2023-04-01T15:30:00Z");
    row("half an hour forward", "Australia/Lord_Howe", "2023-09-30T15:40:00Z",
        "2023-09-30T15:30:00Z", "2023-09-30T16:00:00Z");
    row("the minute past midnight", "America/St_Johns", "2010-11-07T02:30:30Z",
        "2010-11-07T02:30:00Z", "2010-11-07T02:31:00Z");
    row("after the minute past midnight", "America/St_Johns", "2010-11-07T02:40:00Z",
        "2010-11-07T02:31:00Z", "2010-11-07T03:30:00Z");
    row("before 1970", "UTC", "1969-12-31T23:59:59.750Z", "1969-12-31T23:00:00Z",
        "1970-01-01T00:00:00Z");
    row("by the sun, before zones", "Europe/Berlin", "1850-06-15T12:00:00Z", "1850-06-15T11:06:32Z",
        "1850-06-15T12:06:32Z");
}

void CalendarTest::anHourEndsWhereTheClocksChange()
{
    QFETCH(QString, zone);
    QFETCH(QString, date);
    QFETCH(QString, start);
    QFETCH(QString, end);
    QCOMPARE(written(calendarOf(zone).dateInterval(Component::Hour, moment(date))),
             written(DateInterval{moment(start), moment(end)}));
}

void CalendarTest::aMomentJustBeforeMidnightIsOfTheDayBefore_data()
{
    QTest::addColumn<QString>("zone");
    QTest::addColumn<QString>("midnight");
    QTest::newRow("UTC") << u"UTC"_s << u"2024-06-15T00:00:00Z"_s;
    QTest::newRow("Berlin") << u"Europe/Berlin"_s << u"2024-06-14T22:00:00Z"_s;
    QTest::newRow("no midnight") << u"America/Sao_Paulo"_s << u"2017-10-15T03:00:00Z"_s;
    QTest::newRow("told twice") << u"America/Havana"_s << u"2023-11-05T04:00:00Z"_s;
    QTest::newRow("skipped day") << u"Pacific/Apia"_s << u"2011-12-30T10:00:00Z"_s;
    QTest::newRow("before 1970") << u"Asia/Tokyo"_s << u"1960-02-28T15:00:00Z"_s;
    QTest::newRow("1970") << u"UTC"_s << u"1970-01-01T00:00:00Z"_s;
}

void CalendarTest::aMomentJustBeforeMidnightIsOfTheDayBefore()
{
    QFETCH(QString, zone);
    QFETCH(QString, midnight);
    const Calendar calendar = calendarOf(zone);
    const Date start = moment(midnight);
    const Date before{std::nextafter(start.secondsSince1970, -1e18)};
    QVERIFY(before < start);
    for (const auto component : {Component::Day, Component::Hour}) {
        const auto earlier = calendar.dateInterval(component, before);
        const auto later = calendar.dateInterval(component, start);
        QVERIFY(earlier && later);
        QCOMPARE(written(earlier->end), written(start));
        QCOMPARE(written(later->start), written(start));
        QVERIFY(earlier->end == start);
        QVERIFY(earlier->contains(before));
    }
}

void CalendarTest::aMomentBeyondReachHasNoDayAndNoHour_data()
{
    QTest::addColumn<double>("seconds");
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("infinity") << std::numeric_limits<double>::infinity();
    QTest::newRow("minus infinity") << -std::numeric_limits<double>::infinity();
    QTest::newRow("largest") << std::numeric_limits<double>::max();
    QTest::newRow("lowest") << std::numeric_limits<double>::lowest();
    QTest::newRow("a million years") << 3.2e13;
    QTest::newRow("a million years ago") << -3.2e13;
}

void CalendarTest::aMomentBeyondReachHasNoDayAndNoHour()
{
    QFETCH(double, seconds);
    const Calendar calendar = calendarOf(u"Europe/Berlin"_s);
    QVERIFY(!calendar.dateInterval(Component::Day, {seconds}));
    QVERIFY(!calendar.dateInterval(Component::Hour, {seconds}));
    QVERIFY(!calendar.local({seconds}).isValid());
    QCOMPARE(calendar.shortTime({seconds}), QString());
}

void CalendarTest::theFarPastAndFutureHaveDays_data()
{
    QTest::addColumn<QString>("zone");
    QTest::addColumn<double>("seconds");
    for (const char* zone : {"UTC", "Europe/Berlin", "America/St_Johns", "Asia/Tehran"}) {
        for (const double seconds : {-1e13, -1e12, Date::distantPast().secondsSince1970,
                                     -62167219200.0, -1.0, 0.0, 4e9, 253402300800.0, 1e12, 1e13}) {
            QTest::addRow("%s %.0f", zone, seconds) << QString::fromLatin1(zone) << seconds;
        }
    }
}

void CalendarTest::theFarPastAndFutureHaveDays()
{
    QFETCH(QString, zone);
    QFETCH(double, seconds);
    const Calendar calendar = calendarOf(zone);
    const auto day = calendar.dateInterval(Component::Day, {seconds});
    QVERIFY(day);
    QVERIFY(day->contains({seconds}));
    QVERIFY(day->duration() >= 82800 && day->duration() <= 90000);
    const auto hour = calendar.dateInterval(Component::Hour, {seconds});
    QVERIFY(hour);
    QVERIFY(hour->contains({seconds}));
    QVERIFY(hour->duration() <= 3600);
}

void CalendarTest::aDayGivenByItsNumbersStartsAtItsFirstMoment_data()
{
    QTest::addColumn<QString>("zone");
    QTest::addColumn<QDate>("day");
    QTest::addColumn<QString>("start");
    QTest::newRow("ordinary") << u"Europe/Berlin"_s << QDate(2024, 6, 15)
                              << u"2024-06-14T22:00:00Z"_s;
    QTest::newRow("leap day") << u"UTC"_s << QDate(2024, 2, 29) << u"2024-02-29T00:00:00Z"_s;
    QTest::newRow("no midnight") << u"America/Sao_Paulo"_s << QDate(2017, 10, 15)
                                 << u"2017-10-15T03:00:00Z"_s;
    QTest::newRow("two midnights")
        << u"America/Havana"_s << QDate(2023, 11, 5) << u"2023-11-05T04:00:00Z"_s;
    QTest::newRow("back at midnight")
        << u"America/Sao_Paulo"_s << QDate(2018, 2, 18) << u"2018-02-18T03:00:00Z"_s;
    QTest::newRow("back past midnight")
        << u"America/St_Johns"_s << QDate(2010, 11, 7) << u"2010-11-07T02:30:00Z"_s;
    QTest::newRow("after the skipped day")
        << u"Pacific/Apia"_s << QDate(2011, 12, 31) << u"2011-12-30T10:00:00Z"_s;
    QTest::newRow("before zones") << u"Europe/Berlin"_s << QDate(1850, 6, 15)
                                  << u"1850-06-14T23:06:32Z"_s;
}

void CalendarTest::aDayGivenByItsNumbersStartsAtItsFirstMoment()
{
    QFETCH(QString, zone);
    QFETCH(QDate, day);
    QFETCH(QString, start);
    const auto found = calendarOf(zone).startOfDay(day.year(), day.month(), day.day());
    QVERIFY(found);
    QCOMPARE(written(*found), written(moment(start)));
}

void CalendarTest::aDayThatIsNotInTheYearHasNoStart_data()
{
    QTest::addColumn<QString>("zone");
    QTest::addColumn<int>("year");
    QTest::addColumn<int>("month");
    QTest::addColumn<int>("day");
    QTest::newRow("30 February") << u"UTC"_s << 2024 << 2 << 30;
    QTest::newRow("29 February") << u"UTC"_s << 2023 << 2 << 29;
    QTest::newRow("31 April") << u"Europe/Berlin"_s << 2024 << 4 << 31;
    QTest::newRow("month 13") << u"Europe/Berlin"_s << 2024 << 13 << 1;
    QTest::newRow("month 0") << u"Europe/Berlin"_s << 2024 << 0 << 1;
    QTest::newRow("day 0") << u"Europe/Berlin"_s << 2024 << 1 << 0;
    QTest::newRow("negative") << u"Europe/Berlin"_s << 2024 << -1 << -1;
    QTest::newRow("skipped by the date line") << u"Pacific/Apia"_s << 2011 << 12 << 30;
    QTest::newRow("a far year") << u"Europe/Berlin"_s << 2'000'000 << 1 << 1;
    QTest::newRow("the last of years") << u"UTC"_s << std::numeric_limits<int>::max() << 1 << 1;
}

void CalendarTest::aDayThatIsNotInTheYearHasNoStart()
{
    QFETCH(QString, zone);
    QFETCH(int, year);
    QFETCH(int, month);
    QFETCH(int, day);
    QVERIFY(!calendarOf(zone).startOfDay(year, month, day));
}

void CalendarTest::anUnknownZoneCountsAsUtc()
{
    const Calendar calendar(QTimeZone("Nowhere/At_All"), QLocale::c());
    QCOMPARE(written(*calendar.startOfDay(2024, 6, 15)), u"2024-06-15T00:00:00.000Z"_s);
}

void CalendarTest::theTimeOfDayIsWrittenAsTheLocaleWritesIt_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QString>("expected");
    QTest::newRow("German") << QLocale(QLocale::German, QLocale::Germany) << u"14:05"_s;
    QTest::newRow("Turkish") << QLocale(QLocale::Turkish, QLocale::Turkey) << u"14:05"_s;
    QTest::newRow("American") << QLocale(QLocale::English, QLocale::UnitedStates) << u"2:05 PM"_s;
}

void CalendarTest::theTimeOfDayIsWrittenAsTheLocaleWritesIt()
{
    QFETCH(QLocale, locale);
    QFETCH(QString, expected);
    const Calendar calendar(QTimeZone("Europe/Berlin"), locale);
    QString written = calendar.shortTime(moment(u"2024-06-15T12:05:59.999Z"_s));
    written.replace(QChar(0x202F), u' '); // newer locale data has a narrow blank there
    QCOMPARE(written, expected);
}

void CalendarTest::askingForADayOrAnHourIsCheap()
{
    // Grouping asks once for each of 86,400 rows.
    constexpr int kTimes = 20'000;
    const Calendar calendar = calendarOf(u"Europe/Berlin"_s);
    for (const auto component : {Component::Day, Component::Hour}) {
        QElapsedTimer timer;
        timer.start();
        for (int time = 0; time < kTimes; ++time) {
            const Date date{1.78e9 + time * 997.0};
            QVERIFY(calendar.dateInterval(component, date)->contains(date));
        }
        const double microseconds = static_cast<double>(timer.nsecsElapsed()) / 1000 / kTimes;
        qInfo("%s: %.2f microseconds", component == Component::Day ? "day" : "hour", microseconds);
        QVERIFY(microseconds < 20 * kSlowness);
    }
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::CalendarTest)
#include "CalendarTest.moc"
