// SPDX-License-Identifier: Apache-2.0
//
// How long the list is: a page, what was added to it, and what was recorded since.
#include "tests/Model/ListingRig.h"

#include <QSignalSpy>

using namespace mossbank;
using namespace Qt::StringLiterals;
using Extent = Listing::Extent;

class ListingDepthTest : public QObject, ListingRig {
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void aPageOfAllHistory_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("shown");
        QTest::addColumn<bool>("canShowEarlier");
        QTest::newRow("fewer") << 1499 << 1499 << false;
        QTest::newRow("as many") << 1500 << 1500 << false;
        QTest::newRow("one more") << 1501 << 1500 << true;
    }
    void aPageOfAllHistory()
    {
        QFETCH(int, count);
        QFETCH(int, shown);
        QFETCH(bool, canShowEarlier);
        add(u"a"_s, kToday - 10 * kDay, count);
        listing().setDay(std::nullopt);
        open();
        passDebounce();
        QCOMPARE(listing().memories().size(), shown);
        QCOMPARE(listing().canShowEarlier(), canShowEarlier);
        QCOMPARE(listing().extent(), canShowEarlier ? Extent::NewestAcrossDays : Extent::Complete);
        // Looked at once more it is no other.
        refresh();
        QCOMPARE(listing().memories().size(), shown);
        QCOMPARE(listing().canShowEarlier(), canShowEarlier);
    }

    void earlierOnesAreAddedAtTheOldEnd()
    {
        showAllHistory(4000);
        QCOMPARE(listing().memories().size(), 1500);
        listing().showEarlier();
        // A second time meanwhile is one too many.
        listing().showEarlier();
        waitForList();
        QCOMPARE(listing().memories().size(), 3000);
        QCOMPARE(selected(), u"a2499"_s);
        QVERIFY(listing().canShowEarlier());
        listing().showEarlier();
        waitForList();
        QCOMPARE(listing().memories().size(), 4000);
        QCOMPARE(selected(), u"a999"_s);
        QCOMPARE(listing().extent(), Extent::Complete);
        listing().showEarlier();
        for (int turn = 0; turn < 5; ++turn)
            QCoreApplication::processEvents();
        QVERIFY(!listing().isLoading());
    }

    void whatWasAddedStaysAndGrowsByWhatIsNew()
    {
        showAllHistory(4000);
        listing().showEarlier();
        waitForList();
        listing().setSelectedID(u"a1500"_s);
        add(u"b"_s, kToday, 7);
        refresh();
        QCOMPARE(listing().memories().size(), 3007);
        QCOMPARE(listing().memories().first().id, u"b6"_s);
        QCOMPARE(listing().memories().last().id, u"a1000"_s);
        QCOMPARE(selected(), u"a1500"_s);
        // More than there is room for: the old end is out of sight, the length is not.
        add(u"c"_s, kToday + 100, 102);
        refresh();
        QCOMPARE(listing().memories().size(), 3007);
        QCOMPARE(listing().memories().first().id, u"c101"_s);
        QVERIFY(listing().canShowEarlier());
    }

    void exactlyAsManyNewOnesAsThereIsRoomFor()
    {
        showAllHistory(4000);
        add(u"b"_s, kToday, 100);
        refresh();
        QCOMPARE(listing().memories().size(), 1600);
        QCOMPARE(listing().memories().last().id, u"a2500"_s);
        QVERIFY(listing().canShowEarlier());
    }

    void oneMoreThanThereIsRoomFor()
    {
        showAllHistory(4000);
        add(u"b"_s, kToday, 101);
        refresh();
        QCOMPARE(listing().memories().size(), 1500);
        QCOMPARE(listing().memories().last().id, u"a2601"_s);
        QCOMPARE(listing().extent(), Extent::NewestAcrossDays);
        QVERIFY(listing().canShowEarlier());
    }

    void moreNewOnesThanThereIsRoomForWhileEarlierOnesAreAdded()
    {
        showAllHistory(4000);
        add(u"b"_s, kToday, 130);
        listing().showEarlier();
        waitForList();
        QCOMPARE(listing().memories().size(), 3100);
        QCOMPARE(listing().memories().last().id, u"a1030"_s);
        QCOMPARE(selected(), u"a2499"_s);
        QCOMPARE(listing().extent(), Extent::NewestAcrossDays);
        QVERIFY(listing().canShowEarlier());
    }

    void otherFiltersBeginWithAPage()
    {
        showAllHistory(4000);
        listing().showEarlier();
        waitForList();
        QCOMPARE(listing().memories().size(), 3000);
        listing().setQuery(u"moss"_s);
        passDebounce();
        QCOMPARE(listing().memories().size(), 1500);
    }

    void aFilterThatChangesMeanwhileEndsTheStep()
    {
        showAllHistory(4000);
        listing().setSelectedID(u"a3999"_s);
        listing().showEarlier();
        listing().setQuery(u"moss"_s);
        passDebounce();
        QCOMPARE(listing().memories().size(), 1500);
        QCOMPARE(selected(), u"a3999"_s);
        // And the next step is one.
        listing().showEarlier();
        waitForList();
        QCOMPARE(listing().memories().size(), 3000);
        QCOMPARE(selected(), u"a2499"_s);
    }

    void aStepThatFailedCanBeTriedAgain()
    {
        showAllHistory(4000);
        listing().setSelectedID(u"a3999"_s);
        breakLibrary();
        listing().showEarlier();
        QTRY_VERIFY(!error().isEmpty());
        settle();
        QCOMPARE(listing().memories().size(), 1500);
        QCOMPARE(selected(), u"a3999"_s);
        mendLibrary();
        listing().showEarlier();
        waitForList();
        QCOMPARE(listing().memories().size(), 3000);
    }

    void aStepBeyondTheOldEndAddsEarlierOnes()
    {
        showAllHistory(1600);
        listing().setSelectedID(u"a100"_s);
        listing().step(-1);
        QCOMPARE(selected(), u"a100"_s);
        waitForList();
        QCOMPARE(listing().memories().size(), 1600);
        QCOMPARE(selected(), u"a99"_s);
        listing().setSelectedID(u"a0"_s);
        listing().step(-1);
        QCOMPARE(selected(), u"a0"_s);
    }

    void aDayHasItsOwnCeiling()
    {
        add(u"a"_s, kToday, 20'001, kEditor, kText, 4);
        open();
        QCOMPARE(listing().memories().size(), 20'000);
        QCOMPARE(listing().extent(), Extent::NewestOfDay);
        QVERIFY(!listing().canShowEarlier());
        QCOMPARE(listing().words(false).countLabel(),
                 u"Newest 20000 moments · this day holds more than the list shows"_s);
        m_sql->run(u"DELETE FROM memories WHERE id = 'a0'"_s);
        refresh();
        QCOMPARE(listing().memories().size(), 20'000);
        QCOMPARE(listing().extent(), Extent::Complete);
    }

    void thereIsAnEndToWhatCanBeAdded()
    {
        showAllHistory(22'000);
        for (int step = 0; step < 12; ++step) {
            QVERIFY(listing().canShowEarlier());
            listing().showEarlier();
            waitForList();
        }
        QCOMPARE(listing().memories().size(), 19'500);
        listing().showEarlier();
        waitForList();
        QCOMPARE(listing().memories().size(), 20'000);
        QCOMPARE(selected(), u"a2499"_s);
        QVERIFY(!listing().canShowEarlier());
        QCOMPARE(listing().extent(), Extent::NewestAcrossDays);
        QCOMPARE(listing().words(false).countLabel(),
                 u"Newest 20000 moments · choose a day for earlier ones"_s);
        // What is new takes the place of what is oldest.
        add(u"b"_s, kToday, 5);
        refresh();
        QCOMPARE(listing().memories().size(), 20'000);
        QCOMPARE(listing().memories().first().id, u"b4"_s);
        // A step back from the last stays there.
        listing().setSelectedID(listing().memories().last().id);
        const QString last = selected();
        listing().step(-1);
        QCOMPARE(selected(), last);
    }

private:
    void showAllHistory(int count)
    {
        add(u"a"_s, kToday - 10 * kDay, count);
        listing().setDay(std::nullopt);
        open();
        passDebounce();
    }

    void waitForList()
    {
        QSignalSpy lists(&listing(), &Listing::memoriesChanged);
        QTRY_COMPARE_WITH_TIMEOUT(lists.count(), 1, 20'000);
        settle();
    }
};

QTEST_GUILESS_MAIN(ListingDepthTest)
#include "ListingDepthTest.moc"
