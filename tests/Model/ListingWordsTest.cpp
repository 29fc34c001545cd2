// SPDX-License-Identifier: Apache-2.0
//
// What a list is called, and what is said when it is empty.
#include "Mossbank/Model/ListingWords.h"

#include "tests/Core/Support/CalendarTesting.h"

#include <QTest>
#include <QTranslator>

using namespace mossbank;
using namespace Qt::StringLiterals;
using Extent = ListingWords::Extent;
using About = ListingWords::About;

namespace {

const QString kNoon = u"2026-06-01T12:00:00Z"_s;

Date dayOf(const QString& name)
{
    return moment(name == u"today"_s       ? u"2026-06-01T00:00:00Z"_s
                  : name == u"yesterday"_s ? u"2026-05-31T00:00:00Z"_s
                                           : u"2026-05-12T00:00:00Z"_s);
}

About about(const QString& day)
{
    return {.day = day == u"all"_s ? std::nullopt : std::optional(dayOf(day))};
}

ListingWords words(const About& what, const QLocale& locale = QLocale(u"en_US"_s))
{
    return {what, Calendar(QTimeZone::utc(), locale), moment(kNoon)};
}

/// Puts the number that a text is asked for with before it.
class NumberTeller final : public QTranslator {
public:
    NumberTeller() { QCoreApplication::installTranslator(this); }
    bool isEmpty() const override { return false; }
    QString translate(const char*, const char* source, const char*, int number) const override
    {
        return number < 0 ? QString()
                          : QString::number(number) + u": "_s + QString::fromUtf8(source);
    }
};

} // namespace

class ListingWordsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theHeadingIsTheDay_data()
    {
        QTest::addColumn<QString>("day");
        QTest::addColumn<QString>("title");
        QTest::newRow("all") << u"all"_s << u"All history"_s;
        QTest::newRow("today") << u"today"_s << u"Today"_s;
        QTest::newRow("yesterday") << u"yesterday"_s << u"May 31"_s;
        QTest::newRow("another") << u"another"_s << u"May 12"_s;
    }
    void theHeadingIsTheDay()
    {
        QFETCH(QString, day);
        QFETCH(QString, title);
        QCOMPARE(words(about(day)).dateTitle(), title);
    }

    void theDayIsWrittenAsTheLanguageDoes()
    {
        QCOMPARE(words(about(u"another"_s), QLocale(u"de_DE"_s)).dateTitle(), u"12. Mai"_s);
        QCOMPARE(words(about(u"another"_s), QLocale(u"tr_TR"_s)).dateTitle(), u"12 Mayıs"_s);
        QCOMPARE(words(about(u"another"_s), QLocale(u"ja_JP"_s)).dateTitle(), u"5月12日"_s);
        QCOMPARE(words(about(u"another"_s), QLocale::c()).dateTitle(), u"May 12"_s);
    }

    void theCountSaysWhatItCounts_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<int>("count");
        QTest::addColumn<Extent>("extent");
        QTest::addColumn<bool>("canShowEarlier");
        QTest::addColumn<bool>("isByMeaning");
        QTest::addColumn<QString>("label");
        const auto row = [](const char* name, const QString& query, int count, Extent extent,
                            bool canShowEarlier, bool isByMeaning, const QString& label) {
            QTest::newRow(name) << query << count << extent << canShowEarlier << isByMeaning
                                << label;
        };
        constexpr Extent kAll = Extent::Complete;
        constexpr Extent kDay = Extent::NewestOfDay;
        constexpr Extent kAcross = Extent::NewestAcrossDays;
        const QString query = u"heron"_s;
        row("none", {}, 0, kAll, false, false, u"0 moments"_s);
        row("one", {}, 1, kAll, false, false, u"1 moment"_s);
        row("more", {}, 1500, kAll, false, false, u"1,500 moments"_s);
        row("no match", query, 0, kAll, false, false, u"0 matches"_s);
        row("one match", query, 1, kAll, false, false, u"1 match"_s);
        row("matches", query, 12, kAll, false, false, u"12 matches"_s);
        row("the newest", {}, 1500, kAcross, true, false, u"Newest 1,500 moments"_s);
        row("the newest one", {}, 1, kAcross, true, false, u"Newest 1 moment"_s);
        row("the newest matches", query, 1500, kAcross, true, false, u"Newest 1,500 matches"_s);
        row("the newest match", query, 1, kAcross, true, false, u"Newest 1 match"_s);
        row("all that can be shown", {}, 20'000, kAcross, false, false,
            u"Newest 20,000 moments · choose a day for earlier ones"_s);
        row("of a day", {}, 20'000, kDay, false, false,
            u"Newest 20,000 moments · this day holds more than the list shows"_s);
        row("matches of a day", query, 20'000, kDay, false, false,
            u"Newest 20,000 matches · this day holds more than the list shows"_s);
        row("by meaning", query, 40, kAll, false, true, u"40 by meaning"_s);
        row("one by meaning", query, 1, kAll, false, true, u"1 by meaning"_s);
        row("the newest by meaning", query, 40, kAcross, true, true, u"Newest 40 by meaning"_s);
    }
    void theCountSaysWhatItCounts()
    {
        QFETCH(QString, query);
        QFETCH(int, count);
        QFETCH(Extent, extent);
        QFETCH(bool, canShowEarlier);
        QFETCH(bool, isByMeaning);
        QFETCH(QString, label);
        const About what = {.query = query,
                            .count = count,
                            .extent = extent,
                            .canShowEarlier = canShowEarlier,
                            .isListedByMeaning = isByMeaning};
        QCOMPARE(words(what).countLabel(), label);
    }

    void numbersAreWrittenAsTheLanguageDoes()
    {
        QCOMPARE(words({.count = 1500}, QLocale(u"de_DE"_s)).countLabel(), u"1.500 moments"_s);
    }

    void anEmptyListSaysWhatIsMissing_data()
    {
        QTest::addColumn<QString>("day");
        QTest::addColumn<QString>("noApp");
        QTest::addColumn<QString>("app");
        QTest::newRow("all") << u"all"_s << u"Nothing was saved in your history"_s
                             << u"Nothing from Editor in your history"_s;
        QTest::newRow("today") << u"today"_s << u"Nothing was saved today"_s
                               << u"Nothing from Editor today"_s;
        QTest::newRow("yesterday") << u"yesterday"_s << u"Nothing was saved yesterday"_s
                                   << u"Nothing from Editor yesterday"_s;
        QTest::newRow("another") << u"another"_s << u"Nothing was saved on May 12"_s
                                 << u"Nothing from Editor on May 12"_s;
    }
    void anEmptyListSaysWhatIsMissing()
    {
        QFETCH(QString, day);
        QFETCH(QString, noApp);
        QFETCH(QString, app);
        About what = about(day);
        QCOMPARE(words(what).emptyTitle(), noApp);
        what.appFilter = u"Editor"_s;
        QCOMPARE(words(what).emptyTitle(), app);
        what.query = u"heron"_s;
        QCOMPARE(words(what).emptyTitle(), u"No moments found"_s);
    }

    void whatMatchesOnOtherDaysIsTold_data()
    {
        QTest::addColumn<QString>("day");
        QTest::addColumn<QString>("one");
        QTest::addColumn<QString>("more");
        QTest::newRow("today") << u"today"_s
                               << u"Nothing today, but 1 screenshot matches on other days."_s
                               << u"Nothing today, but 1,201 screenshots match on other days."_s;
        QTest::newRow("yesterday")
            << u"yesterday"_s << u"Nothing yesterday, but 1 screenshot matches on other days."_s
            << u"Nothing yesterday, but 1,201 screenshots match on other days."_s;
        QTest::newRow("another")
            << u"another"_s << u"Nothing on May 12, but 1 screenshot matches on other days."_s
            << u"Nothing on May 12, but 1,201 screenshots match on other days."_s;
    }
    void whatMatchesOnOtherDaysIsTold()
    {
        QFETCH(QString, day);
        QFETCH(QString, one);
        QFETCH(QString, more);
        const Date before = moment(u"2026-05-01T00:00:00Z"_s);
        About what = about(day);
        what.query = u"heron"_s;
        // It goes before everything else that could be said.
        what.isListedByMeaning = true;
        what.meaningIsReady = true;
        what.dayMatches = {{before, 1}};
        QCOMPARE(words(what).emptyDetail(), one);
        what.dayMatches = {{before, 1200}, {before + 86'400, 1}, {*what.day, 5}};
        QCOMPARE(words(what).emptyDetail(), more);
        // Of the chosen day alone, without a query, of all history: nothing elsewhere.
        what.dayMatches = {{*what.day, 5}};
        QVERIFY(words(what).emptyDetail().startsWith(u"Nothing close enough"_s));
        what.dayMatches = {{before, 1}};
        what.query.clear();
        QVERIFY(!words(what).emptyDetail().startsWith(u"Nothing"_s));
        what.query = u"heron"_s;
        what.day = std::nullopt;
        QVERIFY(words(what).emptyDetail().startsWith(u"Nothing close enough"_s));
    }

    void whatToDoIsTold_data()
    {
        QTest::addColumn<About>("what");
        QTest::addColumn<QString>("detail");
        const QString heron = u"heron"_s;
        const auto row = [](const char* name, const About& what, const QString& detail) {
            QTest::newRow(name) << what << detail;
        };
        row("not by meaning either",
            {.query = heron, .isListedByMeaning = true, .meaningIsReady = true},
            u"Nothing close enough in meaning either. Try another phrase, date, or application."_s);
        row("by meaning perhaps", {.query = heron, .meaningIsReady = true},
            u"No screenshot has those words on it. Mossbank can look for the ones that were about "
            "this instead."_s);
        row("not found", {.query = heron}, u"Try another phrase, date, or application."_s);
        row("not found in an application", {.query = heron, .appFilter = u"Editor"_s},
            u"Try another phrase, date, or application."_s);
        row("not recording", {}, u"Recording is off, so nothing new is being saved."_s);
        row("recording", {.isRecording = true},
            u"Pick another day, or jump to the newest screenshots."_s);
        for (const bool isRecording : {false, true}) {
            About what = about(u"all"_s);
            what.appFilter = u"Editor"_s;
            what.isRecording = isRecording;
            row("of all history", what, u"No Editor screenshots in your history."_s);
            what.day = dayOf(u"today"_s);
            row("of today", what, u"No Editor screenshots today."_s);
            what.day = dayOf(u"yesterday"_s);
            row("of yesterday", what, u"No Editor screenshots yesterday."_s);
            what.day = dayOf(u"another"_s);
            row("of another day", what, u"No Editor screenshots on May 12."_s);
        }
    }
    void whatToDoIsTold()
    {
        QFETCH(About, what);
        QFETCH(QString, detail);
        QCOMPARE(words(what).emptyDetail(), detail);
    }

    void aLanguageHearsTheNumberItHasFormsFor_data()
    {
        QTest::addColumn<About>("what");
        QTest::addColumn<QString>("label");
        const auto row = [](const char* name, const About& what, const QString& label) {
            QTest::newRow(name) << what << label;
        };
        constexpr Extent kAcross = Extent::NewestAcrossDays;
        const QString heron = u"heron"_s;
        row("moments", {.count = 1203}, u"1203: 1,203 moments"_s);
        row("none", {.count = 0}, u"0: 0 moments"_s);
        row("the newest moments", {.count = 7, .extent = kAcross, .canShowEarlier = true},
            u"7: Newest 7 moments"_s);
        row("matches", {.query = heron, .count = 7}, u"7: 7 matches"_s);
        row("the newest matches",
            {.query = heron, .count = 7, .extent = kAcross, .canShowEarlier = true},
            u"7: Newest 7 matches"_s);
        row("by meaning", {.count = 7, .isListedByMeaning = true}, u"7: 7 by meaning"_s);
        row("one by meaning", {.count = 1, .isListedByMeaning = true}, u"1: 1 by meaning"_s);
        row("the newest by meaning",
            {.count = 7, .extent = kAcross, .canShowEarlier = true, .isListedByMeaning = true},
            u"7: Newest 7 by meaning"_s);
    }
    void aLanguageHearsTheNumberItHasFormsFor()
    {
        QFETCH(About, what);
        QFETCH(QString, label);
        const NumberTeller teller;
        QCOMPARE(words(what).countLabel(), label);
    }

    void andOfWhatMatchesOnOtherDays_data()
    {
        QTest::addColumn<QString>("day");
        QTest::addColumn<QString>("detail");
        QTest::newRow("today")
            << u"today"_s << u"1203: Nothing today, but 1,203 screenshots match on other days."_s;
        QTest::newRow("yesterday")
            << u"yesterday"_s
            << u"1203: Nothing yesterday, but 1,203 screenshots match on other days."_s;
        QTest::newRow("another")
            << u"another"_s
            << u"1203: Nothing on May 12, but 1,203 screenshots match on other days."_s;
    }
    void andOfWhatMatchesOnOtherDays()
    {
        QFETCH(QString, day);
        QFETCH(QString, detail);
        const NumberTeller teller;
        About what = about(day);
        what.query = u"heron"_s;
        what.dayMatches = {{moment(u"2026-05-01T00:00:00Z"_s), 1203}};
        QCOMPARE(words(what).emptyDetail(), detail);
    }

    void daysAreThoseOfTheCalendar_data()
    {
        QTest::addColumn<QString>("zone");
        QTest::addColumn<QString>("now");
        QTest::addColumn<QString>("day");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("empty");
        const auto row = [](const char* name, const QString& zone, const QString& now,
                            const QString& day, const QString& date, const QString& when) {
            const bool isToday = when == u"today"_s;
            QTest::newRow(name) << zone << now + u'Z' << day + u'Z' << (isToday ? u"Today"_s : date)
                                << u"Nothing was saved "_s + when;
        };
        const QString today = u"today"_s;
        const QString yesterday = u"yesterday"_s;
        // The clocks go from midnight to one, and at the end of the summer back to eleven.
        const QString asuncion = u"America/Asuncion"_s;
        row("before a day that begins at one", asuncion, u"2023-10-01T03:59:59"_s,
            u"2023-09-30T04:00:00"_s, {}, today);
        row("at its first moment", asuncion, u"2023-10-01T04:00:00"_s, u"2023-10-01T04:00:00"_s, {},
            today);
        row("at its first moment, of the one before", asuncion, u"2023-10-01T04:00:00"_s,
            u"2023-09-30T04:00:00"_s, u"September 30"_s, yesterday);
        row("at its first moment, of two before", asuncion, u"2023-10-01T04:00:00"_s,
            u"2023-09-29T04:00:00"_s, u"September 29"_s, u"on September 29"_s);
        row("the day after it", asuncion, u"2023-10-02T03:00:00"_s, u"2023-10-01T04:00:00"_s,
            u"October 1"_s, yesterday);
        row("the last of 25 hours", asuncion, u"2024-03-24T03:59:59"_s, u"2024-03-23T03:00:00"_s,
            {}, today);
        row("after 25 hours", asuncion, u"2024-03-24T04:00:00"_s, u"2024-03-23T03:00:00"_s,
            u"March 23"_s, yesterday);
        const QString cairo = u"Africa/Cairo"_s;
        row("the last before one", cairo, u"2024-04-25T21:59:59"_s, u"2024-04-24T22:00:00"_s, {},
            today);
        row("one", cairo, u"2024-04-25T22:00:00"_s, u"2024-04-24T22:00:00"_s, u"April 25"_s,
            yesterday);
        row("eleven for the second time", cairo, u"2024-10-31T21:59:59"_s, u"2024-10-30T21:00:00"_s,
            {}, today);
        row("and midnight", cairo, u"2024-10-31T22:00:00"_s, u"2024-10-30T21:00:00"_s,
            u"October 31"_s, yesterday);
        // By half an hour.
        const QString lordHowe = u"Australia/Lord_Howe"_s;
        row("the last of 24 hours and a half", lordHowe, u"2024-04-07T13:29:59"_s,
            u"2024-04-06T13:00:00"_s, {}, today);
        row("after them", lordHowe, u"2024-04-07T13:30:00"_s, u"2024-04-06T13:00:00"_s,
            u"April 7"_s, yesterday);
        row("the last of 23 hours and a half", lordHowe, u"2024-10-06T12:59:59"_s,
            u"2024-10-05T13:30:00"_s, {}, today);
        row("after these", lordHowe, u"2024-10-06T13:00:00"_s, u"2024-10-05T13:30:00"_s,
            u"October 6"_s, yesterday);
        // The 30th of December 2011 was left out there: the day before the 31st is the 29th.
        const QString apia = u"Pacific/Apia"_s;
        row("before a day that was not", apia, u"2011-12-30T09:59:59"_s, u"2011-12-29T10:00:00"_s,
            {}, today);
        row("after it", apia, u"2011-12-30T10:00:00"_s, u"2011-12-29T10:00:00"_s, u"December 29"_s,
            yesterday);
        row("late after it", apia, u"2011-12-31T09:59:59"_s, u"2011-12-29T10:00:00"_s,
            u"December 29"_s, yesterday);
        row("two before it", apia, u"2011-12-30T10:00:00"_s, u"2011-12-28T10:00:00"_s,
            u"December 28"_s, u"on December 28"_s);
    }
    void daysAreThoseOfTheCalendar()
    {
        QFETCH(QString, zone);
        QFETCH(QString, now);
        QFETCH(QString, day);
        QFETCH(QString, title);
        QFETCH(QString, empty);
        const ListingWords list({.day = moment(day)}, calendarOf(zone), moment(now));
        QCOMPARE(list.dateTitle(), title);
        QCOMPARE(list.emptyTitle(), empty);
    }
};

QTEST_GUILESS_MAIN(ListingWordsTest)
#include "ListingWordsTest.moc"
