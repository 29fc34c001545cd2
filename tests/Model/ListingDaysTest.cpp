// SPDX-License-Identifier: Apache-2.0
//
// How a day is chosen, how history is shown, and what the user is told once.
#include "tests/Core/Support/CalendarTesting.h"
#include "tests/Model/ListingRig.h"

#include <QSignalSpy>

using namespace mossbank;
using namespace Qt::StringLiterals;
using Lens = Listing::Lens;

Q_DECLARE_METATYPE(Listing::Lens)

class ListingDaysTest : public QObject, ListingRig {
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void aWindowOpenedTheNextMorningShowsThatMorning()
    {
        open();
        listing().closeWorkspace();
        m_rig->clock.advance(kDay);
        open();
        QCOMPARE(listing().day(), std::optional(kToday + kDay));
    }

    void aDayThatWasChosenStays()
    {
        open();
        listing().setDay(kToday - kDay);
        listing().closeWorkspace();
        m_rig->clock.advance(kDay);
        open();
        QCOMPARE(listing().day(), std::optional(kToday - kDay));
        listing().setDay(std::nullopt);
        listing().closeWorkspace();
        open();
        QCOMPARE(listing().day(), std::nullopt);
        listing().shiftDay(0);
        listing().setDay(kToday + kDay);
        listing().closeWorkspace();
        m_rig->clock.advance(kDay);
        open();
        QCOMPARE(listing().day(), std::optional(kToday + 2 * kDay));
    }

    void aSecondWindowLeavesTheDayAsItIs()
    {
        open();
        m_rig->clock.advance(kDay);
        open();
        QCOMPARE(listing().day(), std::optional(kToday));
    }

    void daysGoBackAndForthAsFarAsToday_data()
    {
        QTest::addColumn<QString>("zone");
        QTest::addColumn<QString>("now");
        QTest::addColumn<QString>("day");
        QTest::addColumn<int>("shift");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const QString& zone, const QString& now,
                            const QString& day, int shift, const QString& expected) {
            QTest::newRow(name) << zone << now << day << shift << expected;
        };
        const QString utc = u"UTC"_s;
        const QString now = u"2026-06-01T12:00:00Z"_s;
        const QString today = u"2026-06-01T00:00:00.000Z"_s;
        row("a day back", utc, now, today, -1, u"2026-05-31T00:00:00.000Z"_s);
        row("a week back", utc, now, today, -7, u"2026-05-25T00:00:00.000Z"_s);
        row("not beyond today", utc, now, today, 1, today);
        row("to today", utc, now, u"2026-05-31T00:00:00.000Z"_s, 1, today);
        row("far beyond", utc, now, u"2026-05-31T00:00:00.000Z"_s, 1000, today);
        row("nowhere", utc, now, u"2026-05-31T00:00:00.000Z"_s, 0, u"2026-05-31T00:00:00.000Z"_s);
        row("from all history", utc, now, {}, 1, today);
        row("back from all history", utc, now, {}, -1, u"2026-05-31T00:00:00.000Z"_s);
        const QString berlin = u"Europe/Berlin"_s;
        const QString summer = u"2024-04-02T10:00:00Z"_s;
        row("onto a day of 23 hours", berlin, summer, u"2024-03-31T22:00:00.000Z"_s, -1,
            u"2024-03-30T23:00:00.000Z"_s);
        row("over it", berlin, summer, u"2024-03-31T22:00:00.000Z"_s, -2,
            u"2024-03-29T23:00:00.000Z"_s);
        row("from before it", berlin, summer, u"2024-03-29T23:00:00.000Z"_s, 2,
            u"2024-03-31T22:00:00.000Z"_s);
        // Midnight is left out there on that day.
        const QString beirut = u"Asia/Beirut"_s;
        row("onto a day that begins at one", beirut, summer, u"2024-03-31T21:00:00.000Z"_s, -1,
            u"2024-03-30T22:00:00.000Z"_s);
        row("and on from it", beirut, summer, u"2024-03-30T22:00:00.000Z"_s, 1,
            u"2024-03-31T21:00:00.000Z"_s);
        const QString asuncion = u"America/Asuncion"_s;
        const QString spring = u"2023-10-02T12:00:00Z"_s;
        row("onto another such day", asuncion, spring, u"2023-10-02T03:00:00.000Z"_s, -1,
            u"2023-10-01T04:00:00.000Z"_s);
        row("back from it", asuncion, spring, u"2023-10-01T04:00:00.000Z"_s, -1,
            u"2023-09-30T04:00:00.000Z"_s);
        const QString kolkata = u"Asia/Kolkata"_s;
        row("half an hour beside the others", kolkata, now, u"2026-05-31T18:30:00.000Z"_s, -1,
            u"2026-05-30T18:30:00.000Z"_s);
        const QString lordHowe = u"Australia/Lord_Howe"_s;
        const QString autumn = u"2024-04-08T00:00:00Z"_s;
        row("onto a day of half an hour more", lordHowe, autumn, u"2024-04-07T13:30:00.000Z"_s, -1,
            u"2024-04-06T13:00:00.000Z"_s);
        row("over it by half an hour", lordHowe, autumn, u"2024-04-07T13:30:00.000Z"_s, -2,
            u"2024-04-05T13:00:00.000Z"_s);
        row("and on again", lordHowe, autumn, u"2024-04-05T13:00:00.000Z"_s, 2,
            u"2024-04-07T13:30:00.000Z"_s);
        // The 30th of December 2011 was left out there.
        const QString apia = u"Pacific/Apia"_s;
        const QString newYear = u"2012-01-02T00:00:00Z"_s;
        row("back over a day that was not", apia, newYear, u"2011-12-30T10:00:00.000Z"_s, -1,
            u"2011-12-29T10:00:00.000Z"_s);
        row("on over it", apia, newYear, u"2011-12-29T10:00:00.000Z"_s, 1,
            u"2011-12-30T10:00:00.000Z"_s);
    }
    void daysGoBackAndForthAsFarAsToday()
    {
        QFETCH(QString, zone);
        QFETCH(QString, now);
        QFETCH(QString, day);
        QFETCH(int, shift);
        QFETCH(QString, expected);
        Surroundings surroundings = m_rig->surroundings();
        surroundings.calendar = [zone] {
            return calendarOf(zone);
        };
        m_rig->clock.setNow(moment(now));
        Listing list(surroundings, *m_rig->recorder, nullptr);
        list.setDay(day.isEmpty() ? std::nullopt : std::optional(moment(day)));
        list.shiftDay(shift);
        QCOMPARE(written(list.day().value_or(Date{})), expected);
    }

    void daysAreThoseOfTheZone_data()
    {
        QTest::addColumn<QByteArray>("zone");
        for (const QByteArray zone : {"UTC", "Europe/Berlin", "Pacific/Apia", "America/Los_Angeles",
                                      "Asia/Kathmandu", "Pacific/Marquesas"})
            QTest::newRow(zone.constData()) << zone;
    }
    void daysAreThoseOfTheZone()
    {
        QFETCH(QByteArray, zone);
        const CalendarSource calendar = RecorderRig::calendarOf(QTimeZone(zone));
        begin(calendar);
        const auto today =
            calendar().dateInterval(Calendar::Component::Day, m_rig->clock.now()).value();
        const Date yesterday = calendar().daysBefore(1, today.start).value();
        QCOMPARE(listing().day(), std::optional(today.start));
        add(u"before"_s, today.start - 1, 1);
        add(u"first"_s, today.start, 1);
        add(u"last"_s, today.end - 1, 1);
        add(u"after"_s, today.end, 1);
        open();
        QCOMPARE(ids(), u"last0 first0"_s);
        QCOMPARE(listing().stats().days,
                 (QMap<Date, qsizetype>{{yesterday, 1}, {today.start, 2}, {today.end, 1}}));
        listing().setAppFilter(kEditor);
        listing().shiftDay(-1);
        passDebounce();
        QCOMPARE(ids(), u"before0"_s);
        QCOMPARE(listing().dayMatches(), std::optional(listing().stats().days));
        QCOMPARE(listing().latestDayWithHistory(), std::optional(today.end));
        QCOMPARE(listing().words(false).emptyTitle(), u"Nothing from Editor yesterday"_s);
    }

    void theNewestDayThatHasAnyIsKnown()
    {
        add(u"a"_s, kToday - 3 * kDay, 1);
        add(u"b"_s, kToday - 5 * kDay, 1);
        refresh();
        QCOMPARE(listing().latestDayWithHistory(), std::optional(kToday - 3 * kDay));
        listing().setDay(kToday - 3 * kDay);
        QCOMPARE(listing().latestDayWithHistory(), std::optional(kToday - 5 * kDay));
        m_sql->run(u"DELETE FROM memories"_s);
        refresh();
        QCOMPARE(listing().latestDayWithHistory(), std::nullopt);
    }

    void theLensIsStoredAndChangesNothingElse_data()
    {
        QTest::addColumn<Lens>("lens");
        QTest::addColumn<QString>("stored");
        QTest::newRow("moments") << Lens::Moments << u"moments"_s;
        QTest::newRow("timeline") << Lens::Timeline << u"timeline"_s;
        QTest::newRow("ask") << Lens::Ask << u"ask"_s;
    }
    void theLensIsStoredAndChangesNothingElse()
    {
        QFETCH(Lens, lens);
        QFETCH(QString, stored);
        m_rig->preferences.setLens(lens == Lens::Ask ? u"moments"_s : u"ask"_s);
        add(u"a"_s, kToday, 2, kEditor, u"heron"_s);
        open();
        listing().setQuery(u"heron"_s);
        passDebounce();
        QSignalSpy lenses(&listing(), &Listing::lensChanged);
        listing().setLens(lens);
        listing().setLens(lens);
        QCOMPARE(lenses.count(), 1);
        QCOMPARE(Preferences(m_rig->preferences.path()).lens(), stored);
        QCOMPARE(listing().lens(), lens);
        QCOMPARE(listing().query(), u"heron"_s);
        QCOMPARE(ids(), u"a1 a0"_s);
        QCOMPARE(m_rig->clock.sleepers(), std::size_t(0));
    }

    void whatIsStoredWithoutANameIsMoments()
    {
        m_rig->preferences.setLens(u"telescope"_s);
        QCOMPARE(listing().lens(), Lens::Moments);
    }

    void theHintIsShownUntilSomethingIsTyped()
    {
        refresh();
        QVERIFY2(!listing().showsSearchHint(), "there is nothing to be found yet");
        add(u"a"_s, kToday, 1);
        QSignalSpy hints(&listing(), &Listing::showsSearchHintChanged);
        refresh();
        QVERIFY(listing().showsSearchHint());
        QCOMPARE(hints.count(), 1);
        listing().setDay(std::nullopt);
        QVERIFY(listing().showsSearchHint());
        listing().setQuery(u"h"_s);
        QVERIFY(!listing().showsSearchHint());
        QCOMPARE(hints.count(), 2);
        QVERIFY(Preferences(m_rig->preferences.path()).hasSeenSearchHint());
        listing().dismissSearchHint();
        QCOMPARE(hints.count(), 2);
    }

    void theSampleLibraryHasNoHintAndStoresNothing()
    {
        Preferences sample{Preferences::Sample{}};
        Listing list(m_rig->surroundings(sample), *m_rig->recorder, m_rig->store.get());
        add(u"a"_s, kToday, 1);
        QCoro::waitFor(list.refresh());
        QCOMPARE(list.stats().count, 1);
        QVERIFY(!list.showsSearchHint());
        list.setLens(Lens::Timeline);
        QCOMPARE(list.lens(), Lens::Timeline);
        QCOMPARE(m_rig->preferences.lens(), u"moments"_s);
    }

    void theViewerIsEnlargedOrNot()
    {
        QSignalSpy changes(&listing(), &Listing::showsEnlargedChanged);
        listing().setShowsEnlarged(true);
        listing().setShowsEnlarged(true);
        QVERIFY(listing().showsEnlarged());
        QCOMPARE(changes.count(), 1);
    }
};

QTEST_GUILESS_MAIN(ListingDaysTest)
#include "ListingDaysTest.moc"
