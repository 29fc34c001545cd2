// SPDX-License-Identifier: Apache-2.0
//
// What comes while the list is being made or something is being deleted, and who is told of what.
#include "Mossbank/Model/Preferences.h"
#include "MossbankCore/Library/HistoryStore.h"
#include "tests/Model/ListingRig.h"

#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <limits>

using namespace Qt::StringLiterals;

namespace mossbank {

class ListingEventsTest : public QObject, private ListingRig {
    Q_OBJECT

    QStringList inLibrary() { return m_sql->rows(u"SELECT id FROM memories ORDER BY id DESC"_s); }

    /// So long that whatever is asked of the library has been answered, with nobody told of it.
    static void letLibraryAnswer() { QThread::msleep(300); }

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void twoDeletionsInOneGoBothHappen()
    {
        add(u"a"_s, kToday, 4);
        open();
        listing().setSelectedID(u"a2"_s);
        listing().deleteSelected();
        listing().setSelectedID(u"a1"_s);
        listing().deleteSelected();
        QTRY_COMPARE(ids(), u"a3 a0"_s);
        settle();
        QCOMPARE(selected(), u"a0"_s);
        QCOMPARE(inLibrary(), QStringList({u"a3"_s, u"a0"_s}));
    }

    void whatIsDeletedIsGoneAlsoWhenTheListGoesAtOnce()
    {
        add(u"a"_s, kToday, 2);
        open();
        listing().setSelectedID(u"a1"_s);
        listing().deleteSelected();
        m_listing.reset();
        QTRY_COMPARE(inLibrary(), QStringList(u"a0"_s));
    }

    void earlierOnesAreAddedAlsoWhileAnotherAnswerIsOnItsWay()
    {
        add(u"a"_s, kToday - 3000, 1600);
        open();
        listing().setDay(std::nullopt);
        passDebounce();
        QCOMPARE(listing().memories().size(), 1500);
        const auto first = listing().refresh();
        letLibraryAnswer();
        QCoreApplication::processEvents();
        letLibraryAnswer();
        listing().showEarlier();
        settle();
        QCOMPARE(listing().memories().size(), 1600);
        QCOMPARE(selected(), u"a99"_s);
    }

    void aMomentStandsForItsDay()
    {
        add(u"a"_s, kToday, 1);
        open();
        QSignalSpy days(&listing(), &Listing::dayChanged);
        listing().setDay(kToday + 5000);
        QCOMPARE(days.count(), 0);
        QCOMPARE(listing().latestDayWithHistory(), std::nullopt);
        listing().setDay(kToday - 5000);
        QCOMPARE(days.count(), 1);
        QCOMPARE(listing().day(), std::optional(kToday - kDay));
        QCOMPARE(listing().latestDayWithHistory(), std::optional(kToday));
    }

    void whatIsDeletedIsOffAListThatIsNotMadeAnew()
    {
        add(u"a"_s, kToday, 3);
        open();
        listing().showByMeaning(listing().memories());
        listing().setSelectedID(u"a1"_s);
        listing().deleteSelected();
        QTRY_COMPARE(ids(), u"a2 a0"_s);
        QTRY_COMPARE(selected(), u"a0"_s);
        QTRY_COMPARE(listing().stats().count, 2);
        QVERIFY(listing().isListedByMeaning());
        listing().deleteSelected();
        QTRY_COMPARE(selected(), u"a2"_s);
        listing().deleteSelected();
        QTRY_COMPARE(ids(), QString());
        QTRY_COMPARE(selected(), u"none"_s);
    }

    void whatCouldNotBeDeletedStaysOnTheList()
    {
        add(u"a"_s, kToday, 2);
        open();
        listing().showByMeaning(listing().memories());
        breakLibrary();
        listing().deleteSelected();
        QTRY_VERIFY(error().startsWith(u"Could not delete the screenshot: "_s));
        QCOMPARE(ids(), u"a1 a0"_s);
        mendLibrary();
    }

    void aDeletionThatFailedAtItsVeryEndHasRemovedTheRow()
    {
        add(u"a"_s, kToday, 2);
        open();
        listing().showByMeaning(listing().memories());
        // Who reads keeps the log from being emptied of what is deleted.
        m_sql->run(u"BEGIN"_s);
        QCOMPARE(inLibrary().size(), 2);
        listing().deleteSelected();
        QTRY_VERIFY_WITH_TIMEOUT(error().startsWith(u"Could not delete the screenshot: "_s),
                                 20'000);
        QTRY_COMPARE(ids(), u"a0"_s);
        QCOMPARE(selected(), u"a0"_s);
        m_sql->run(u"COMMIT"_s);
        QCOMPARE(inLibrary(), QStringList(u"a0"_s));
    }

    void nothingIsHeldOfWhatWasDeletedAsAWhole()
    {
        add(u"a"_s, kToday, 2);
        open();
        listing().showByMeaning(listing().memories());
        listing().closeWorkspace();
        m_sql->run(u"DELETE FROM memories"_s);
        listing().forgetAll();
        QVERIFY(listing().memories().isEmpty());
        QCOMPARE(listing().selectedID(), std::nullopt);
        QVERIFY(!listing().isListedByMeaning());
        QTRY_COMPARE(listing().stats().count, 0);
    }

    void typingEndsTheListByMeaningAtOnce()
    {
        QSignalSpy meanings(&listing(), &Listing::isListedByMeaningChanged);
        listing().showByMeaning({});
        QCOMPARE(meanings.count(), 1);
        QVERIFY(listing().isListedByMeaning());
        listing().setQuery(u"moss"_s);
        QCOMPARE(meanings.count(), 2);
        QVERIFY(!listing().isListedByMeaning());
    }

    void theListIsToldBeforeWhatIsSelectedOnIt()
    {
        add(u"a"_s, kToday, 2);
        QStringList told;
        connect(&listing(), &Listing::memoriesChanged, this,
                [&] { told.append(u"list, "_s + selected()); });
        connect(&listing(), &Listing::selectedIDChanged, this,
                [&] { told.append(u"selection"_s); });
        open();
        QCOMPARE(told, QStringList({u"list, a1"_s, u"selection"_s}));
        told.clear();
        refresh();
        QCOMPARE(told, QStringList(u"list, a1"_s));
    }

    void noStepIsTooLarge()
    {
        add(u"a"_s, kToday, 3);
        open();
        listing().setSelectedID(u"a1"_s);
        listing().step(std::numeric_limits<qsizetype>::min());
        QCOMPARE(selected(), u"a0"_s);
        listing().step(std::numeric_limits<qsizetype>::max());
        QCOMPARE(selected(), u"a2"_s);
        listing().shiftDay(std::numeric_limits<int>::max());
        QCOMPARE(listing().day(), std::optional(kToday));
        listing().shiftDay(std::numeric_limits<int>::min());
        QVERIFY(*listing().day() <= kToday);
    }

    void aLensSaysWhatItShows_data()
    {
        QTest::addColumn<Listing::Lens>("lens");
        QTest::addColumn<QString>("help");
        using Lens = Listing::Lens;
        QTest::newRow("moments") << Lens::Moments << u"One screenshot at a time"_s;
        QTest::newRow("timeline") << Lens::Timeline << u"The day grouped into stretches of work"_s;
        QTest::newRow("ask") << Lens::Ask << u"Ask a question and get the moments that answer it"_s;
    }
    void aLensSaysWhatItShows()
    {
        QFETCH(Listing::Lens, lens);
        QTEST(Listing::help(lens), "help");
    }

    void whoChoosesElsewhereIsFollowed()
    {
        add(u"a"_s, kToday, 1);
        open();
        QSignalSpy lenses(&listing(), &Listing::lensChanged);
        m_rig->preferences.setLens(u"timeline"_s);
        QCOMPARE(lenses.count(), 1);
        QCOMPARE(listing().lens(), Listing::Lens::Timeline);
        QVERIFY(listing().showsSearchHint());
        QSignalSpy hints(&listing(), &Listing::showsSearchHintChanged);
        m_rig->preferences.setHasSeenSearchHint(true);
        QCOMPARE(hints.count(), 1);
        QVERIFY(!listing().showsSearchHint());
        listing().dismissSearchHint();
        QCOMPARE(hints.count(), 1);
    }
};

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::ListingEventsTest)
#include "ListingEventsTest.moc"
