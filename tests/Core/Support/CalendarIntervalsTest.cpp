// SPDX-License-Identifier: Apache-2.0
#include "tests/Core/Support/CalendarTesting.h"

#include <QTest>

#include <cmath>

namespace mossbank {

using namespace Qt::StringLiterals;
using Component = Calendar::Component;

/// Where days and hours begin and end, to the moment, also where the clocks change.
class CalendarIntervalsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void aDayLiesBetweenItsMidnights_data();
    void aDayLiesBetweenItsMidnights();
    void anHourEndsWhereTheClocksChange_data();
    void anHourEndsWhereTheClocksChange();
    void aMomentJustBeforeMidnightIsOfTheDayBefore_data();
    void aMomentJustBeforeMidnightIsOfTheDayBefore();
};

void CalendarIntervalsTest::initTestCase()
{
    QVERIFY2(QTimeZone("Europe/Berlin").isValid(),
             "The rules of time zones are missing: install the package tzdata.");
}

void CalendarIntervalsTest::aDayLiesBetweenItsMidnights_data()
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

void CalendarIntervalsTest::aDayLiesBetweenItsMidnights()
{
    QFETCH(QString, zone);
    QFETCH(QString, date);
    QFETCH(QString, start);
    QFETCH(QString, end);
    QCOMPARE(written(calendarOf(zone).dateInterval(Component::Day, moment(date))),
             written(DateInterval{moment(start), moment(end)}));
}

void CalendarIntervalsTest::anHourEndsWhereTheClocksChange_data()
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

void CalendarIntervalsTest::anHourEndsWhereTheClocksChange()
{
    QFETCH(QString, zone);
    QFETCH(QString, date);
    QFETCH(QString, start);
    QFETCH(QString, end);
    QCOMPARE(written(calendarOf(zone).dateInterval(Component::Hour, moment(date))),
             written(DateInterval{moment(start), moment(end)}));
}

void CalendarIntervalsTest::aMomentJustBeforeMidnightIsOfTheDayBefore_data()
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

void CalendarIntervalsTest::aMomentJustBeforeMidnightIsOfTheDayBefore()
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

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::CalendarIntervalsTest)
#include "CalendarIntervalsTest.moc"
