// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Workspace/CalendarMonth.h"

#include "Mossbank/Model/Listing.h"
#include "tests/Model/ListingRig.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

#include <functional>

using namespace Qt::StringLiterals;
using namespace mossbank;

namespace {

CalendarSource britain()
{
    return [] {
        return Calendar(QTimeZone("Europe/London"),
                        QLocale(QLocale::English, QLocale::UnitedKingdom));
    };
}

} // namespace

/// The fake clock begins on 14 November 2023, a Tuesday.
class CalendarMonthTest : public QObject, private ListingRig {
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        m_month.reset();
        end();
    }

    void itShowsTheMonthOfTheChosenDay()
    {
        show(britain());
        QCOMPARE(m_month->title(), u"November 2023"_s);
        QCOMPARE(m_month->weekdays().join(u' '), u"M T W T F S S"_s);
        // The first is a Wednesday.
        QCOMPARE(number(1), 0);
        QCOMPARE(number(2), 1);
        QCOMPARE(number(31), 30);
        QCOMPARE(number(32), 0);
        QVERIFY(is(15, CalendarMonth::IsChosenRole) && is(15, CalendarMonth::IsTodayRole));
        QVERIFY(!is(14, CalendarMonth::IsChosenRole) && is(16, CalendarMonth::IsFutureRole));
    }

    void aWeekBeginsWhereTheUserHasItBegin()
    {
        show([] {
            return Calendar(QTimeZone::utc(), QLocale(QLocale::English, QLocale::UnitedStates));
        });
        QCOMPARE(m_month->weekdays().first(), u"S"_s);
        QCOMPARE(number(3), 1);
    }

    void theMonthIsTurned()
    {
        show(britain());
        QSignalSpy turns(m_month.get(), &CalendarMonth::monthChanged);
        QVERIFY(!m_month->hasNext());
        m_month->showNext();
        QCOMPARE(turns.size(), 0);
        m_month->showPrevious();
        QCOMPARE(m_month->title(), u"October 2023"_s);
        QVERIFY(m_month->hasNext());
        m_month->showNext();
        QCOMPARE(m_month->title(), u"November 2023"_s);
        QCOMPARE(turns.size(), 2);
        QCOMPARE(listing().day(), m_rig->surroundings().calendar().startOfDay(2023, 11, 14));
    }

    void itFollowsADayThatIsChosenElsewhere()
    {
        show(britain());
        listing().setDay(kToday - 45 * kDay);
        QCOMPARE(m_month->title(), u"September 2023"_s);
        // All history is of no month.
        listing().setDay(std::nullopt);
        QCOMPARE(m_month->title(), u"September 2023"_s);
    }

    void aDayIsChosen()
    {
        show(britain());
        m_month->choose(2);
        QCOMPARE(listing().day(), m_rig->surroundings().calendar().startOfDay(2023, 11, 1));
        m_month->choose(1);
        m_month->choose(41);
        m_month->choose(-1);
        m_month->choose(100);
        QCOMPARE(listing().day(), m_rig->surroundings().calendar().startOfDay(2023, 11, 1));
    }

    void aDaySaysHowMuchThereIsOfIt()
    {
        begin(britain());
        add(u"a"_s, kToday + 60, 4);
        add(u"b"_s, kToday - kDay, 1);
        make();
        open();
        QCOMPARE(spoken(15), fullDate(14) + u", 4 screenshots"_s);
        QCOMPARE(spoken(14), fullDate(13) + u", 1 screenshot"_s);
        QCOMPARE(spoken(13), fullDate(12) + u", 0 screenshots"_s);
        QCOMPARE(spoken(0), QString());
        QCOMPARE(share(15), 1.0);
        QCOMPARE(share(14), 0.25);
        QCOMPARE(share(13), 0.0);
    }

    void underAFilterItSaysHowManyMatch()
    {
        begin(britain());
        add(u"a"_s, kToday + 60, 4);
        add(u"b"_s, kToday - kDay, 1, kEditor, u"a heron"_s);
        make();
        open();
        listing().setQuery(u"heron"_s);
        passDebounce();
        QCOMPARE(spoken(15), fullDate(14) + u", 0 matches"_s);
        QCOMPARE(spoken(14), fullDate(13) + u", 1 match"_s);
        QCOMPARE(share(14), 1.0);
    }

    void theTabKeyStopsAtOneDay()
    {
        show(britain());
        QCOMPARE(tabStops(), QList<int>{15});
        m_month->choose(4);
        QCOMPARE(tabStops(), QList<int>{4});
        // Of a month without the chosen day it is the first.
        m_month->showPrevious();
        QCOMPARE(m_month->title(), u"October 2023"_s);
        QCOMPARE(tabStops().size(), 1);
        QCOMPARE(number(tabStops().first()), 1);
        listing().setDay(std::nullopt);
        QCOMPARE(number(tabStops().first()), 1);
    }

    void aDayThatAZoneHasLeftOutIsNotThere()
    {
        // Samoa went from the 29th to the 31st of December 2011.
        show([] {
            return Calendar(QTimeZone("Pacific/Apia"),
                            QLocale(QLocale::English, QLocale::UnitedKingdom));
        });
        while (m_month->title() != u"December 2011")
            m_month->showPrevious();
        // The first is a Thursday.
        QCOMPARE(number(3 + 28), 29);
        QCOMPARE(number(3 + 29), 0);
        QCOMPARE(number(3 + 30), 31);
        const auto day = listing().day();
        m_month->choose(3 + 29);
        QCOMPARE(listing().day(), day);
    }

private:
    void show(const CalendarSource& calendar)
    {
        begin(calendar);
        make();
    }
    void make()
    {
        m_month = std::make_unique<CalendarMonth>(listing(), m_rig->clock,
                                                  m_rig->surroundings().calendar);
        QAbstractItemModelTester tester(m_month.get());
    }

    /// Of a day of November 2023, as the locale's own data have it.
    QString fullDate(int day) const
    {
        return m_rig->surroundings().calendar().fullDate(kToday + (day - 14) * kDay + 1);
    }
    QVariant data(int cell, int role) const { return m_month->data(m_month->index(cell), role); }
    int number(int cell) const { return data(cell, CalendarMonth::NumberRole).toInt(); }
    bool is(int cell, int role) const { return data(cell, role).toBool(); }
    QList<int> tabStops() const
    {
        QList<int> stops;
        for (int cell = 0; cell < m_month->rowCount({}); ++cell) {
            if (is(cell, CalendarMonth::IsTabStopRole))
                stops.append(cell);
        }
        return stops;
    }
    QString spoken(int cell) const { return data(cell, CalendarMonth::SpokenRole).toString(); }
    double share(int cell) const { return data(cell, CalendarMonth::ShareRole).toDouble(); }

    std::unique_ptr<CalendarMonth> m_month;
};

QTEST_MAIN(CalendarMonthTest)
#include "CalendarMonthTest.moc"
