// SPDX-License-Identifier: Apache-2.0
//
// What is marked on the strip of a day: hours and applications.
#include "MossbankCore/Browsing/DayTimeline.h"
#include "MossbankCore/Support/PartitioningIndex.h"
#include "tests/Core/Support/CalendarTesting.h"

#include <QTest>

#include <ranges>
#include <stdexcept>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

constexpr double kSpacing = 56;

DayTimeline between(const QString& from, const QString& to)
{
    const DateInterval stretch = {moment(from), moment(to)};
    return {stretch, stretch};
}

/// Ten hours of a day, enough for what is told in minutes after eight.
DayTimeline tenHours()
{
    return between(u"2026-05-31T08:00:00Z"_s, u"2026-05-31T18:00:00Z"_s);
}

/// "A0 B12.5": applications and the minutes after eight.
std::vector<DayTimeline::Entry> entriesOf(const QString& text)
{
    std::vector<DayTimeline::Entry> entries;
    for (const QString& part : text.split(u' ', Qt::SkipEmptyParts))
        entries.push_back({tenHours().window().start + 60 * part.mid(1).toDouble(), part.left(1)});
    return entries;
}

/// The same of the icons and their places.
QString writtenIcons(const std::vector<DayTimeline::IconSlot>& slots)
{
    QStringList parts;
    for (const DayTimeline::IconSlot& slot : slots)
        parts.append(slot.app + QString::number(slot.x));
    return parts.join(u' ');
}

} // namespace

class TimelineMarksTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hoursAreLabelledAsFarAsThereIsRoom_data()
    {
        QTest::addColumn<double>("width");
        QTest::addColumn<QString>("hours");
        QTest::newRow("each") << 560.0 << u"8 9 10 11 12 13 14 15 16 17 18"_s;
        QTest::newRow("every second") << 555.0 << u"8 10 12 14 16 18"_s;
        QTest::newRow("just every second") << 280.0 << u"8 10 12 14 16 18"_s;
        QTest::newRow("every third") << 279.0 << u"9 12 15 18"_s;
        QTest::newRow("every fourth") << 150.0 << u"8 12 16"_s;
        QTest::newRow("every sixth") << 100.0 << u"12 18"_s;
        QTest::newRow("every twelfth") << 50.0 << u"12"_s;
        QTest::newRow("no more than that") << 5.0 << u"12"_s;
        QTest::newRow("no room") << 0.0 << QString();
        QTest::newRow("less than none") << -5.0 << QString();
    }
    void hoursAreLabelledAsFarAsThereIsRoom()
    {
        QFETCH(double, width);
        QFETCH(QString, hours);
        const Calendar calendar = calendarOf(u"UTC"_s);
        QStringList shown;
        for (const Date tick : tenHours().hourTicks(width, kSpacing, calendar))
            shown.append(QString::number(calendar.local(tick).time().hour()));
        QCOMPARE(shown.join(u' '), hours);
    }

    void hoursAreThoseOfTheClock_data()
    {
        QTest::addColumn<QString>("zone");
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<QString>("hours");
        QTest::newRow("from the middle of an hour")
            << u"UTC"_s << u"2026-05-31T08:20:00Z"_s << u"2026-05-31T10:10:00Z"_s
            << u"09:00 10:00"_s;
        QTest::newRow("within an hour")
            << u"UTC"_s << u"2026-05-31T08:20:00Z"_s << u"2026-05-31T08:50:00Z"_s << QString();
        QTest::newRow("a zone of a half hour")
            << u"Asia/Kolkata"_s << u"2026-05-31T04:00:00Z"_s << u"2026-05-31T06:30:00Z"_s
            << u"10:00 11:00 12:00"_s;
        QTest::newRow("an hour left out") << u"Europe/Berlin"_s << u"2024-03-31T00:00:00Z"_s
                                          << u"2024-03-31T02:00:00Z"_s << u"01:00 03:00 04:00"_s;
        QTest::newRow("an hour told twice")
            << u"Europe/Berlin"_s << u"2024-10-26T23:00:00Z"_s << u"2024-10-27T02:00:00Z"_s
            << u"01:00 02:00 02:00 03:00"_s;
        QTest::newRow("half an hour told twice")
            << u"Australia/Lord_Howe"_s << u"2024-04-06T14:00:00Z"_s << u"2024-04-06T17:30:00Z"_s
            << u"01:00 02:00 03:00 04:00"_s;
    }
    void hoursAreThoseOfTheClock()
    {
        QFETCH(QString, zone);
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(QString, hours);
        const Calendar calendar = calendarOf(zone);
        QStringList shown;
        for (const Date tick : between(from, to).hourTicks(1000, kSpacing, calendar))
            shown.append(calendar.local(tick).time().toString(u"HH:mm"_s));
        QCOMPARE(shown.join(u' '), hours);
    }

    void nothingHasNoHours()
    {
        QVERIFY(between(u"2026-05-31T08:00:00Z"_s, u"2026-05-31T08:00:00Z"_s)
                    .hourTicks(500, kSpacing, calendarOf(u"UTC"_s))
                    .empty());
        const DateInterval beyond = {{1e300}, {2e300}};
        QVERIFY(DayTimeline(beyond, beyond).hourTicks(500, kSpacing, calendarOf(u"UTC"_s)).empty());
    }

    // On a strip of 600, a minute is as wide as a unit.
    void applicationsHaveIconsAsFarAsThereIsRoom_data()
    {
        QTest::addColumn<QString>("entries");
        QTest::addColumn<QString>("icons");
        const auto row = [](const char* name, const QString& entries, const QString& icons) {
            QTest::newRow(name) << entries << icons;
        };
        row("none", {}, {});
        row("one", u"A30"_s, u"A30"_s);
        row("one stretch", u"A30 A40 A55 A70"_s, u"A30"_s);
        row("a pause as long as may be", u"A30 A45"_s, u"A30"_s);
        row("longer than that", u"A30 A45.1 A62.2"_s, u"A30 A62.2"_s);
        row("another in between", u"A30 B50 A70"_s, u"A30 B50 A70"_s);
        row("too near", u"A30 B40 A60"_s, u"A30 A60"_s);
        row("just beside", u"A30 B47"_s, u"A30 B47"_s);
        row("nearly", u"A30 B46.9"_s, u"A30"_s);
        // What follows one that has no room is still its stretch.
        row("a stretch without room", u"A30 B40 B50 B60"_s, u"A30"_s);
        row("in no order", u"B50 A30"_s, u"A30 B50"_s);
        row("at one time", u"A30 B30"_s, u"A30"_s);
        row("at the end", u"A600"_s, u"A586"_s);
        row("near the end", u"A560 B599"_s, u"A560 B586"_s);
        row("before the beginning", u"A-20 B10 C17"_s, u"A0 C17"_s);
        row("behind the end", u"A620 B640"_s, u"A586"_s);
    }
    void applicationsHaveIconsAsFarAsThereIsRoom()
    {
        QFETCH(QString, entries);
        QFETCH(QString, icons);
        QCOMPARE(writtenIcons(tenHours().iconSlots(entriesOf(entries), 600, 14, 3, 900)), icons);
    }

    void onANarrowStripTheFirstIconIsAlone()
    {
        QCOMPARE(writtenIcons(tenHours().iconSlots(entriesOf(u"A30 B300 C590"_s), 10, 14, 3, 900)),
                 u"A0"_s);
    }

    void theFirstOfARestIsFound_data()
    {
        QTest::addColumn<QList<int>>("numbers");
        QTest::addColumn<int>("index");
        QTest::newRow("nothing") << QList<int>() << 0;
        QTest::newRow("none of them") << QList{1, 2, 3} << 3;
        QTest::newRow("all of them") << QList{10, 11} << 0;
        QTest::newRow("the rest") << QList{1, 9, 10, 11, 12} << 2;
        QTest::newRow("the last") << QList{1, 2, 3, 10} << 3;
        QTest::newRow("one") << QList{10} << 0;
        QTest::newRow("another one") << QList{9} << 1;
    }
    void theFirstOfARestIsFound()
    {
        QFETCH(QList<int>, numbers);
        QFETCH(int, index);
        const auto isOfTheRest = [](int number) {
            return number >= 10;
        };
        QCOMPARE(static_cast<int>(partitioningIndex(numbers, isOfTheRest)), index);
        // What is kept the other way round, seen in order.
        const QList<int> backwards(numbers.crbegin(), numbers.crend());
        const auto inOrder = std::views::reverse(backwards);
        QCOMPARE(static_cast<int>(partitioningIndex(inOrder, isOfTheRest)), index);
    }

    void fewAreAskedAndAFailureIsPassedOn()
    {
        std::vector<int> numbers(1024);
        int asked = 0;
        const auto found = partitioningIndex(numbers, [&](int) { return ++asked < 0; });
        QCOMPARE(static_cast<int>(found), 1024);
        QVERIFY(asked <= 11);
        const auto fails = [](int) -> bool {
            throw std::runtime_error("no");
        };
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, partitioningIndex(numbers, fails));
    }
};

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::TimelineMarksTest)
#include "TimelineMarksTest.moc"
