// SPDX-License-Identifier: Apache-2.0
#include "tests/Core/Support/CalendarTesting.h"

#include <QElapsedTimer>
#include <QTest>

#include <limits>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;
using Component = Calendar::Component;

/// Sanitizers make everything slower, by how much is not this test's business.
#if defined(__SANITIZE_ADDRESS__)
constexpr double kSlowness = 50;
#else
constexpr double kSlowness = 1;
#endif

} // namespace

class CalendarTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void aMomentBeyondReachHasNoDayAndNoHour_data();
    void aMomentBeyondReachHasNoDayAndNoHour();
    void theFarPastAndFutureHaveDays_data();
    void theFarPastAndFutureHaveDays();

    void aDayGivenByItsNumbersStartsAtItsFirstMoment_data();
    void aDayGivenByItsNumbersStartsAtItsFirstMoment();
    void daysBeforeAreDaysOfTheCalendar_data();
    void daysBeforeAreDaysOfTheCalendar();
    void daysBeforeHaveTheReachOfTheCalendar();
    void aDayThatIsNotInTheYearHasNoStart_data();
    void aDayThatIsNotInTheYearHasNoStart();
    void theNextTimeOfDayIsTheFirstThatTheClocksShow_data();
    void theNextTimeOfDayIsTheFirstThatTheClocksShow();

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

void CalendarTest::theNextTimeOfDayIsTheFirstThatTheClocksShow_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("next");
    QTest::newRow("later the same day")
        << u"2024-05-17T00:00:00Z"_s << u"2024-05-17T00:30:00.000Z"_s;
    QTest::newRow("a moment before")
        << u"2024-05-17T00:29:59.999Z"_s << u"2024-05-17T00:30:00.000Z"_s;
    QTest::newRow("exactly then") << u"2024-05-17T00:30:00Z"_s << u"2024-05-18T00:30:00.000Z"_s;
    QTest::newRow("left out by the clocks")
        << u"2024-03-30T23:30:00Z"_s << u"2024-03-31T01:00:00.000Z"_s;
    QTest::newRow("shown twice") << u"2024-10-26T23:30:00Z"_s << u"2024-10-27T00:30:00.000Z"_s;
    QTest::newRow("between the two") << u"2024-10-27T00:45:00Z"_s << u"2024-10-28T01:30:00.000Z"_s;
    QTest::newRow("before 1970") << u"1960-01-01T12:00:00Z"_s << u"1960-01-02T01:30:00.000Z"_s;
}

void CalendarTest::theNextTimeOfDayIsTheFirstThatTheClocksShow()
{
    QFETCH(QString, from);
    QFETCH(QString, next);
    const auto found = calendarOf(u"Europe/Berlin"_s).next(2, 30, moment(from));
    QVERIFY(found);
    QCOMPARE(written(*found), next);
    QVERIFY(!calendarOf(u"Europe/Berlin"_s).next(2, 30, {std::numeric_limits<double>::infinity()}));
}

void CalendarTest::daysBeforeAreDaysOfTheCalendar_data()
{
    QTest::addColumn<QString>("zone");
    QTest::addColumn<QString>("date");
    QTest::addColumn<int>("days");
    QTest::addColumn<QString>("before");
    const QString berlin = u"Europe/Berlin"_s;
    QTest::newRow("a day") << berlin << u"2024-05-17T10:15:30.250Z"_s << 1
                           << u"2024-05-16T10:15:30.250Z"_s;
    QTest::newRow("a leap year") << berlin << u"2024-03-01T12:00:00Z"_s << 365
                                 << u"2023-03-02T12:00:00.000Z"_s;
    // Days of 23 and of 25 hours lie between.
    QTest::newRow("into winter") << berlin << u"2024-04-01T10:00:00Z"_s << 3
                                 << u"2024-03-29T11:00:00.000Z"_s;
    QTest::newRow("into summer") << berlin << u"2024-10-28T11:00:00Z"_s << 3
                                 << u"2024-10-25T10:00:00.000Z"_s;
    QTest::newRow("a time that was left out")
        << berlin << u"2024-04-01T00:30:00Z"_s << 1 << u"2024-03-31T01:00:00.000Z"_s;
    QTest::newRow("a time that was shown twice")
        << berlin << u"2024-10-28T01:30:00Z"_s << 1 << u"2024-10-27T00:30:00.000Z"_s;
    QTest::newRow("over a day that was left out")
        << u"Pacific/Apia"_s << u"2011-12-31T10:00:00Z"_s << 2 << u"2011-12-30T10:00:00.000Z"_s;
    QTest::newRow("before 1970") << u"UTC"_s << u"1970-01-01T00:00:00Z"_s << 1
                                 << u"1969-12-31T00:00:00.000Z"_s;
}

void CalendarTest::daysBeforeAreDaysOfTheCalendar()
{
    QFETCH(QString, zone);
    QFETCH(QString, date);
    QFETCH(int, days);
    QFETCH(QString, before);
    const auto found = calendarOf(zone).daysBefore(days, moment(date));
    QVERIFY(found);
    QCOMPARE(written(*found), before);
}

void CalendarTest::daysBeforeHaveTheReachOfTheCalendar()
{
    const Calendar calendar = calendarOf(u"Europe/Berlin"_s);
    QVERIFY(!calendar.daysBefore(1, {std::numeric_limits<double>::quiet_NaN()}));
    QVERIFY(
        !calendar.daysBefore(std::numeric_limits<int>::max(), moment(u"2024-05-17T00:00:00Z"_s)));
    QVERIFY(calendar.daysBefore(1'000'000, moment(u"2024-05-17T00:00:00Z"_s)));
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
