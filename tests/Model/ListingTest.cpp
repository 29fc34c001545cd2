// SPDX-License-Identifier: Apache-2.0
//
// Which screenshots are on show, and which of them is selected.
#include "tests/Model/ListingRig.h"

#include <QSignalSpy>

using namespace mossbank;
using namespace Qt::StringLiterals;

class ListingTest : public QObject, ListingRig {
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void itBeginsWithTodayAndNothing()
    {
        QCOMPARE(listing().day(), std::optional(kToday));
        QCOMPARE(listing().query(), QString());
        QCOMPARE(listing().appFilter(), std::nullopt);
        QCOMPARE(listing().selectedID(), std::nullopt);
        QCOMPARE(listing().selected(), nullptr);
        QCOMPARE(listing().imageURL(), std::nullopt);
        QCOMPARE(listing().extent(), Listing::Extent::Complete);
        QCOMPARE(listing().lens(), Listing::Lens::Moments);
        QVERIFY(listing().memories().isEmpty());
        QVERIFY(!listing().isLoading());
        QVERIFY(!listing().isListedByMeaning());
        QVERIFY(!listing().showsEnlarged());
        QVERIFY(!listing().dayMatches());
        QVERIFY(!listing().showsWorkspace());
    }

    void withoutAWindowOnlyTheCountsAreKept()
    {
        add(u"a"_s, kToday, 3);
        QSignalSpy lists(&listing(), &Listing::memoriesChanged);
        refresh();
        QCOMPARE(listing().stats().count, 3);
        QVERIFY(listing().memories().isEmpty());
        QCOMPARE(lists.count(), 0);
        open();
        QCOMPARE(ids(), u"a2 a1 a0"_s);
        listing().closeWorkspace();
        QCOMPARE(ids(), QString());
        add(u"b"_s, kToday + 10, 1);
        refresh();
        QCOMPARE(ids(), QString());
        QCOMPARE(listing().stats().count, 4);
        // One too many closed is none less than none.
        listing().closeWorkspace();
        open();
        QVERIFY(listing().showsWorkspace());
        QCOMPARE(ids(), u"b0 a2 a1 a0"_s);
    }

    void theNewestComesFirstWithItsText()
    {
        add(u"a"_s, kToday + 60, 2, u"Browser"_s, u"heron"_s);
        add(u"b"_s, kToday, 1);
        open();
        QCOMPARE(ids(), u"a1 a0 b0"_s);
        QCOMPARE(listing().memories().first().text, u"heron"_s);
        QStringList oldestFirst;
        for (const Memory& memory : listing().chronological())
            oldestFirst.append(memory.id);
        QCOMPARE(oldestFirst.join(u' '), u"b0 a0 a1"_s);
        QCOMPARE(listing().position(u"b0"_s), std::optional<qsizetype>(2));
        QCOMPARE(listing().position(u"c0"_s), std::nullopt);
        QCOMPARE(listing().stats().apps, (QStringList{u"Browser"_s, u"Editor"_s}));
    }

    void neighboursLessThanAMinuteApartHaveSeconds_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<double>("apart");
        QTest::addColumn<bool>("shows");
        QTest::newRow("none") << 0 << 1.0 << false;
        QTest::newRow("one") << 1 << 1.0 << false;
        QTest::newRow("a minute") << 3 << 60.0 << false;
        QTest::newRow("less") << 3 << 59.9 << true;
    }
    void neighboursLessThanAMinuteApartHaveSeconds()
    {
        QFETCH(int, count);
        QFETCH(double, apart);
        QFETCH(bool, shows);
        add(u"a"_s, kToday, count, kEditor, kText, apart);
        open();
        QCOMPARE(listing().memories().size(), count);
        QCOMPARE(listing().showsSecondsInStrip(), shows);
    }

    void theListFollowsTheFilters()
    {
        add(u"a"_s, kToday, 2, kEditor, u"heron"_s);
        add(u"b"_s, kToday + 10, 1, u"Browser"_s, u"heron"_s);
        add(u"c"_s, kToday - 20, 1, u"Browser"_s, u"egret"_s);
        open();
        QCOMPARE(ids(), u"b0 a1 a0"_s);
        listing().setDay(std::nullopt);
        passDebounce();
        QCOMPARE(ids(), u"b0 a1 a0 c0"_s);
        QVERIFY(!listing().dayMatches());
        listing().setAppFilter(u"Browser"_s);
        passDebounce();
        QCOMPARE(ids(), u"b0 c0"_s);
        QCOMPARE(listing().dayMatches(),
                 std::optional(QMap<Date, qsizetype>{{kToday - kDay, 1}, {kToday, 1}}));
        listing().setQuery(u"egr"_s);
        passDebounce();
        QCOMPARE(ids(), u"c0"_s);
        listing().setAppFilter(std::nullopt);
        listing().setDay(kToday);
        passDebounce();
        QCOMPARE(ids(), QString());
        QCOMPARE(listing().dayMatches(), std::optional(QMap<Date, qsizetype>{{kToday - kDay, 1}}));
    }

    void typingAsksOnceItRests()
    {
        add(u"a"_s, kToday, 1, kEditor, u"heron"_s);
        open();
        QSignalSpy lists(&listing(), &Listing::memoriesChanged);
        for (const QString& typed : {u"h"_s, u"he"_s, u"her"_s}) {
            listing().setQuery(typed);
            QCoreApplication::processEvents();
            m_rig->clock.advance(0.17);
            QCoreApplication::processEvents();
            QVERIFY(!listing().isLoading());
        }
        QCOMPARE(lists.count(), 0);
        m_rig->clock.advance(0.02);
        QTRY_COMPARE(lists.count(), 1);
        settle();
        QCOMPARE(ids(), u"a0"_s);
        QCOMPARE(lists.count(), 1);
        // The same once more is no change.
        listing().setQuery(u"her"_s);
        listing().setDay(kToday);
        listing().setAppFilter(std::nullopt);
        QCoreApplication::processEvents();
        QCOMPARE(m_rig->clock.sleepers(), std::size_t(0));
    }

    void theSelectionStaysWhereItCan()
    {
        add(u"a"_s, kToday, 3, kEditor, u"heron"_s);
        open();
        QCOMPARE(selected(), u"a2"_s);
        listing().setSelectedID(u"a1"_s);
        QCOMPARE(listing().selected()->id, u"a1"_s);
        QCOMPARE(listing().imageURL(),
                 std::optional(QUrl::fromLocalFile(m_rig->store->images() + u"/a1.jpg"_s)));
        add(u"b"_s, kToday + 10, 1, kEditor, u"egret"_s);
        refresh();
        QCOMPARE(selected(), u"a1"_s);
        listing().setQuery(u"heron"_s);
        passDebounce();
        QCOMPARE(selected(), u"a1"_s);
        listing().setQuery(u"egret"_s);
        passDebounce();
        QCOMPARE(selected(), u"b0"_s);
        listing().setQuery(u"stork"_s);
        passDebounce();
        QCOMPARE(selected(), u"none"_s);
        QCOMPARE(listing().selected(), nullptr);
        listing().setQuery({});
        passDebounce();
        QCOMPARE(selected(), u"b0"_s);
    }

    void stepsGoThroughTheListAndStopAtItsEnds()
    {
        add(u"a"_s, kToday, 3);
        open();
        listing().setSelectedID(u"not there"_s);
        listing().step(-1);
        QCOMPARE(selected(), u"a2"_s);
        listing().step(1);
        QCOMPARE(selected(), u"a2"_s);
        listing().step(-1);
        QCOMPARE(selected(), u"a1"_s);
        listing().step(-5);
        QCOMPARE(selected(), u"a0"_s);
        listing().step(-1);
        QCOMPARE(selected(), u"a0"_s);
        listing().step(1);
        QCOMPARE(selected(), u"a1"_s);
    }

    void stepsInAnEmptyListGoNowhere()
    {
        open();
        listing().step(1);
        QCOMPARE(listing().selectedID(), std::nullopt);
    }

    void whoDeletesGoesOnWithTheNextOlder_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("selectedBefore");
        QTest::addColumn<QString>("left");
        QTest::addColumn<QString>("selectedAfter");
        const auto row = [](const char* name, int count, const QString& before, const QString& left,
                            const QString& after) {
            QTest::newRow(name) << count << before << left << after;
        };
        row("the newest", 3, u"a2"_s, u"a1 a0"_s, u"a1"_s);
        row("one in the middle", 3, u"a1"_s, u"a2 a0"_s, u"a0"_s);
        row("the oldest", 3, u"a0"_s, u"a2 a1"_s, u"a1"_s);
        row("the only one", 1, u"a0"_s, {}, u"none"_s);
        row("one that is not on the list", 2, u"gone"_s, u"a1 a0"_s, u"a1"_s);
    }
    void whoDeletesGoesOnWithTheNextOlder()
    {
        QFETCH(int, count);
        QFETCH(QString, selectedBefore);
        QFETCH(QString, left);
        QFETCH(QString, selectedAfter);
        add(u"a"_s, kToday, count);
        open();
        listing().setSelectedID(selectedBefore);
        QSignalSpy lists(&listing(), &Listing::memoriesChanged);
        listing().deleteSelected();
        QTRY_COMPARE(lists.count(), 1);
        settle();
        QCOMPARE(ids(), left);
        QCOMPARE(selected(), selectedAfter);
        QCOMPARE(error(), QString());
    }

    void aDeletionThatFailedIsToldAndTheListComesAnew()
    {
        add(u"a"_s, kToday, 3);
        open();
        listing().setSelectedID(u"a1"_s);
        add(u"b"_s, kToday + 10, 1);
        // All else of the library answers.
        m_sql->run(u"CREATE TRIGGER kept BEFORE DELETE ON memories "
                   "BEGIN SELECT RAISE(ABORT, 'it is kept'); END"_s);
        QSignalSpy lists(&listing(), &Listing::memoriesChanged);
        listing().deleteSelected();
        QTRY_COMPARE(lists.count(), 1);
        settle();
        QCOMPARE(error(), u"Could not delete the screenshot: it is kept"_s);
        QCOMPARE(ids(), u"b0 a2 a1 a0"_s);
        QCOMPARE(selected(), u"a0"_s);
    }

    void nothingSelectedIsNotDeleted()
    {
        open();
        QSignalSpy lists(&listing(), &Listing::memoriesChanged);
        listing().deleteSelected();
        for (int turn = 0; turn < 5; ++turn)
            QCoreApplication::processEvents();
        QCOMPARE(lists.count(), 0);
    }

    void aListThatCannotBeHadLeavesTheOneThatIsThere()
    {
        add(u"a"_s, kToday, 2);
        open();
        listing().setSelectedID(u"a0"_s);
        breakLibrary();
        refresh();
        QVERIFY2(error().contains(u"no such table"_s), qPrintable(error()));
        QCOMPARE(ids(), u"a1 a0"_s);
        QCOMPARE(selected(), u"a0"_s);
        QVERIFY(!listing().isLoading());
        mendLibrary();
        m_rig->recorder->setErrorMessage(std::nullopt);
        refresh();
        QCOMPARE(error(), QString());
    }

    void countsThatCannotBeHadAreNotTold()
    {
        add(u"a"_s, kToday, 2);
        refresh();
        m_sql->run(u"ALTER TABLE memory_slots RENAME TO hidden_slots"_s);
        refresh();
        QCOMPARE(error(), QString());
        QCOMPARE(listing().stats().count, 2);
        // With a window they belong to the list.
        open();
        QVERIFY2(error().contains(u"no such table"_s), qPrintable(error()));
    }

    void aWindowThatClosesMeanwhileEndsTheLoading()
    {
        add(u"a"_s, kToday, 2);
        open();
        auto first = listing().refresh();
        listing().setQuery(u"heron"_s);
        listing().closeWorkspace();
        QCoro::waitFor(first);
        passDebounce();
        QVERIFY(!listing().isLoading());
        QCOMPARE(ids(), QString());
    }

    void theNextWindowBeginsWithWhatWasLookedAt()
    {
        add(u"a"_s, kToday, 3);
        open();
        listing().setSelectedID(u"a0"_s);
        listing().closeWorkspace();
        QCOMPARE(selected(), u"a0"_s);
        QVERIFY(!listing().selected());
        open();
        QCOMPARE(selected(), u"a0"_s);
        QVERIFY(listing().selected());
    }

    void whatWasFoundByMeaningStaysUntilSomethingIsTyped()
    {
        add(u"a"_s, kToday, 3);
        open();
        const Memory found = listing().memories().at(1);
        listing().showByMeaning({found});
        QVERIFY(listing().isListedByMeaning());
        QCOMPARE(ids(), u"a1"_s);
        QCOMPARE(selected(), u"a1"_s);
        add(u"b"_s, kToday + 10, 1);
        refresh();
        QCOMPARE(ids(), u"a1"_s);
        QCOMPARE(listing().stats().count, 4);
        listing().setQuery(u"m"_s);
        QVERIFY(!listing().isListedByMeaning());
        passDebounce();
        QCOMPARE(ids(), u"b0 a2 a1 a0"_s);
    }

    void whoGoesMeanwhileIsNotMissed()
    {
        add(u"a"_s, kToday, 2);
        open();
        auto refreshing = listing().refresh();
        listing().deleteSelected();
        QCoreApplication::processEvents();
        m_listing.reset();
        QCoro::waitFor(refreshing);
        for (int turn = 0; turn < 5; ++turn)
            QCoreApplication::processEvents();
    }

    void withoutALibraryNothingHappens()
    {
        Listing none(m_rig->surroundings(), *m_rig->recorder, nullptr);
        none.openWorkspace();
        none.setQuery(u"x"_s);
        QCoro::waitFor(none.refresh());
        none.setSelectedID(u"x"_s);
        none.deleteSelected();
        none.showEarlier();
        none.step(1);
        QVERIFY(!none.isLoading());
        QCOMPARE(none.imageURL(), std::nullopt);
    }
};

QTEST_GUILESS_MAIN(ListingTest)
#include "ListingTest.moc"
