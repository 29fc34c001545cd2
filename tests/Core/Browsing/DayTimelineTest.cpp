// SPDX-License-Identifier: Apache-2.0
//
// Which stretch of a day is on show, and how far it can be enlarged.
#include "MossbankCore/Browsing/DayTimeline.h"

#include "tests/Core/Support/CalendarTesting.h"

#include <QTest>

#include <limits>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

constexpr double kHour = 3600;
constexpr double kLeast = 2 * kHour;

const QString kBerlin = u"Europe/Berlin"_s;

QString written(const DayTimeline& timeline)
{
    return mossbank::written(timeline.window()) + u" of "_s + mossbank::written(timeline.bounds());
}

/// All of a stretch.
QString allOf(const QString& from, const QString& to)
{
    return from + u" to "_s + to + u" of "_s + from + u" to "_s + to;
}

/// From 08:00 to 18:00 UTC.
DayTimeline tenHours()
{
    const DateInterval bounds = {moment(u"2026-05-31T08:00:00Z"_s),
                                 moment(u"2026-05-31T18:00:00Z"_s)};
    return {bounds, bounds};
}

} // namespace

class DayTimelineTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theHoursThatHaveSomethingAreOnShow_data()
    {
        QTest::addColumn<QString>("zone");
        QTest::addColumn<QString>("day");
        QTest::addColumn<QStringList>("moments");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("end");
        const auto row = [](const char* name, const QString& zone, const QString& day,
                            const QStringList& moments, const QString& start, const QString& end) {
            QTest::newRow(name) << zone << day << moments << start << end;
        };
        const QString utc = u"UTC"_s;
        const QString noon = u"2026-05-31T12:00:00.000Z"_s;
        const QString midnight = u"2026-05-31T00:00:00.000Z"_s;
        const QString next = u"2026-06-01T00:00:00.000Z"_s;
        row("nothing", utc, noon, {}, midnight, next);
        row("other days' alone", utc, noon, {u"2026-05-30T23:59:59.999Z"_s, next}, midnight, next);
        row("one in the morning", utc, noon, {u"2026-05-31T09:30:00Z"_s},
            u"2026-05-31T09:00:00.000Z"_s, u"2026-05-31T11:00:00.000Z"_s);
        row("one on the hour", utc, noon, {u"2026-05-31T09:00:00Z"_s},
            u"2026-05-31T09:00:00.000Z"_s, u"2026-05-31T11:00:00.000Z"_s);
        row("one late", utc, noon, {u"2026-05-31T23:30:00Z"_s}, u"2026-05-31T22:00:00.000Z"_s,
            next);
        row("one an hour before", utc, noon, {u"2026-05-31T22:30:00Z"_s},
            u"2026-05-31T22:00:00.000Z"_s, next);
        row("at the first moment", utc, noon, {midnight}, midnight, u"2026-05-31T02:00:00.000Z"_s);
        row("several, in no order", utc, noon,
            {u"2026-05-31T14:59:59Z"_s, u"2026-05-31T08:00:00Z"_s, u"2026-05-31T11:10:00Z"_s},
            u"2026-05-31T08:00:00.000Z"_s, u"2026-05-31T15:00:00.000Z"_s);
        // 23 hours, and 25.
        row("clocks forward, nothing", kBerlin, u"2024-03-31T10:00:00Z"_s, {},
            u"2024-03-30T23:00:00.000Z"_s, u"2024-03-31T22:00:00.000Z"_s);
        row("clocks back, nothing", kBerlin, u"2024-10-27T10:00:00Z"_s, {},
            u"2024-10-26T22:00:00.000Z"_s, u"2024-10-27T23:00:00.000Z"_s);
        row("before the clocks go forward", kBerlin, u"2024-03-31T10:00:00Z"_s,
            {u"2024-03-31T00:30:00Z"_s}, u"2024-03-31T00:00:00.000Z"_s,
            u"2024-03-31T02:00:00.000Z"_s);
        row("zones of a half hour", u"Asia/Kolkata"_s, u"2026-05-31T06:00:00Z"_s,
            {u"2026-05-31T04:00:00Z"_s}, u"2026-05-31T03:30:00.000Z"_s,
            u"2026-05-31T05:30:00.000Z"_s);
        // Where the clocks go back by half an hour, an hour begins beside the round one.
        row("clocks back by half an hour", u"Australia/Lord_Howe"_s, u"2024-04-06T20:00:00Z"_s,
            {u"2024-04-06T14:30:00Z"_s}, u"2024-04-06T14:00:00.000Z"_s,
            u"2024-04-06T16:00:00.000Z"_s);
        row("a day that begins at one o'clock", u"Asia/Beirut"_s, u"2024-03-31T10:00:00Z"_s, {},
            u"2024-03-30T22:00:00.000Z"_s, u"2024-03-31T21:00:00.000Z"_s);
    }
    void theHoursThatHaveSomethingAreOnShow()
    {
        QFETCH(QString, zone);
        QFETCH(QString, day);
        QFETCH(QStringList, moments);
        QFETCH(QString, start);
        QFETCH(QString, end);
        std::vector<Date> dates;
        for (const QString& text : moments)
            dates.push_back(moment(text));
        const DayTimeline timeline(moment(day), dates, calendarOf(zone), kLeast);
        QCOMPARE(written(timeline), allOf(start, end));
    }

    void aShortDayIsShownWhole()
    {
        const std::vector<Date> noon = {moment(u"2026-05-31T12:00:00Z"_s)};
        const DayTimeline timeline(noon[0], noon, calendarOf(u"UTC"_s), 48 * kHour);
        QCOMPARE(written(timeline),
                 allOf(u"2026-05-31T00:00:00.000Z"_s, u"2026-06-01T00:00:00.000Z"_s));
    }

    void noDayIsADayOfItsOwn()
    {
        const Date beyond = {1e300};
        const DayTimeline timeline(beyond, std::vector<Date>{beyond}, calendarOf(u"UTC"_s), kLeast);
        QCOMPARE(timeline.window(), timeline.bounds());
        QCOMPARE(timeline.bounds().start, beyond);
    }

    void itIsEnlargedAroundAMoment_data()
    {
        QTest::addColumn<double>("scale");
        QTest::addColumn<QString>("around");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("end");
        const auto row = [](const char* name, double scale, const QString& around,
                            const QString& start, const QString& end) {
            const QString day = u"2026-05-31T%1Z"_s;
            QTest::newRow(name) << scale << (around.isEmpty() ? around : day.arg(around))
                                << day.arg(start) << day.arg(end);
        };
        row("not at all", 1, u"09:00:00"_s, u"08:00:00.000"_s, u"18:00:00.000"_s);
        row("less than that", 0.5, u"09:00:00"_s, u"08:00:00.000"_s, u"18:00:00.000"_s);
        row("backwards", -3, u"09:00:00"_s, u"08:00:00.000"_s, u"18:00:00.000"_s);
        row("no number", std::numeric_limits<double>::quiet_NaN(), u"09:00:00"_s, u"08:00:00.000"_s,
            u"18:00:00.000"_s);
        row("five times", 5, u"12:00:00"_s, u"11:00:00.000"_s, u"13:00:00.000"_s);
        row("five times, in the middle", 5, {}, u"12:00:00.000"_s, u"14:00:00.000"_s);
        row("at the beginning", 5, u"08:10:00"_s, u"08:00:00.000"_s, u"10:00:00.000"_s);
        row("at the end", 5, u"17:59:00"_s, u"16:00:00.000"_s, u"18:00:00.000"_s);
        row("before the beginning", 5, u"01:00:00"_s, u"08:00:00.000"_s, u"10:00:00.000"_s);
        row("behind the end", 5, u"23:00:00"_s, u"16:00:00.000"_s, u"18:00:00.000"_s);
        row("as far as it goes", 300, u"12:00:00"_s, u"11:59:00.000"_s, u"12:01:00.000"_s);
        row("farther", 1e9, u"12:00:00"_s, u"11:59:00.000"_s, u"12:01:00.000"_s);
        row("without end", std::numeric_limits<double>::infinity(), u"18:00:00"_s,
            u"17:58:00.000"_s, u"18:00:00.000"_s);
    }
    void itIsEnlargedAroundAMoment()
    {
        QFETCH(double, scale);
        QFETCH(QString, around);
        QFETCH(QString, start);
        QFETCH(QString, end);
        const auto centre = around.isEmpty() ? std::nullopt : std::optional(moment(around));
        // Whatever is on show already.
        for (const DayTimeline& timeline : {tenHours(), tenHours().zoomed(100, std::nullopt)}) {
            const DayTimeline zoomed = timeline.zoomed(scale, centre);
            QCOMPARE(mossbank::written(zoomed.window()), start + u" to "_s + end);
            QCOMPARE(zoomed.bounds(), tenHours().bounds());
        }
    }

    void whatIsShorterThanTheClosestIsShownWhole()
    {
        const DateInterval minute = {moment(u"2026-05-31T12:00:00Z"_s),
                                     moment(u"2026-05-31T12:01:00Z"_s)};
        QCOMPARE(DayTimeline(minute, minute).zoomed(7, minute.start).window(), minute);
    }

    void theLatestIsAtTheEnd()
    {
        QCOMPARE(tenHours().atLatest(), tenHours());
        const DayTimeline latest =
            tenHours().zoomed(5, moment(u"2026-05-31T09:00:00Z"_s)).atLatest();
        QCOMPARE(mossbank::written(latest.window()),
                 u"2026-05-31T16:00:00.000Z to 2026-05-31T18:00:00.000Z"_s);
        QCOMPARE(latest.bounds(), tenHours().bounds());
    }

    void howFarItCanBeEnlarged_data()
    {
        QTest::addColumn<double>("minimum");
        QTest::addColumn<double>("scale");
        QTest::newRow("to the closest") << 120.0 << 300.0;
        QTest::newRow("to a second") << 1.0 << 36'000.0;
        QTest::newRow("to less") << 0.5 << 36'000.0;
        QTest::newRow("just above a second") << 2.0 << 18'000.0;
        QTest::newRow("to more than all") << 1e6 << 1.0;
    }
    void howFarItCanBeEnlarged()
    {
        QFETCH(double, minimum);
        QFETCH(double, scale);
        QCOMPARE(tenHours().deepestScale(minimum), scale);
    }

    void aMomentHasAPlaceAndAPlaceAMoment_data()
    {
        QTest::addColumn<QString>("at");
        QTest::addColumn<double>("fraction");
        QTest::newRow("the start") << u"2026-05-31T08:00:00.000Z"_s << 0.0;
        QTest::newRow("the end") << u"2026-05-31T18:00:00.000Z"_s << 1.0;
        QTest::newRow("within") << u"2026-05-31T10:30:00.000Z"_s << 0.25;
    }
    void aMomentHasAPlaceAndAPlaceAMoment()
    {
        QFETCH(QString, at);
        QFETCH(double, fraction);
        QCOMPARE(tenHours().fraction(moment(at)), fraction);
        QCOMPARE(mossbank::written(tenHours().date(fraction)), at);
    }

    void whatIsOutsideIsAtTheEdge()
    {
        const DayTimeline timeline = tenHours();
        QCOMPARE(timeline.fraction(moment(u"2026-05-31T07:59:59Z"_s)), 0.0);
        QCOMPARE(timeline.fraction(moment(u"2026-05-31T18:00:01Z"_s)), 1.0);
        QCOMPARE(timeline.date(-0.1), timeline.window().start);
        QCOMPARE(timeline.date(1.1), timeline.window().end);
        const DateInterval nothing = {timeline.window().start, timeline.window().start};
        QCOMPARE(DayTimeline(nothing, nothing).fraction(timeline.window().end), 0.0);
    }
};

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::DayTimelineTest)
#include "DayTimelineTest.moc"
