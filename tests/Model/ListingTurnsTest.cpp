// SPDX-License-Identifier: Apache-2.0
//
// What comes while the library is at one of the questions that a list is made of.
#include "tests/Model/ListingRig.h"

#include <QMutex>
#include <QSignalSpy>
#include <QThread>
#include <QWaitCondition>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

/// Asked for the calendar, which each question about days needs once, it can hold the library up.
///
/// Threading: any thread.
class DaysGate {
public:
    /// The library passes so many questions about days, and stands at the next.
    void holdAfter(int passes)
    {
        const QMutexLocker locker(&m_mutex);
        m_passes = passes;
    }
    void open()
    {
        const QMutexLocker locker(&m_mutex);
        m_passes = kAll;
        m_opened.wakeAll();
    }
    bool isHolding()
    {
        const QMutexLocker locker(&m_mutex);
        return m_isHolding;
    }
    int asked()
    {
        const QMutexLocker locker(&m_mutex);
        return m_asked;
    }

    CalendarSource calendar()
    {
        return [this] {
            if (QThread::currentThread() != QCoreApplication::instance()->thread())
                pass();
            return Calendar(QTimeZone::utc(), QLocale::c());
        };
    }

private:
    static constexpr int kAll = 1'000'000;

    void pass()
    {
        const QMutexLocker locker(&m_mutex);
        ++m_asked;
        m_isHolding = m_passes <= 0;
        while (m_passes <= 0)
            m_opened.wait(&m_mutex);
        m_isHolding = false;
        --m_passes;
    }

    QMutex m_mutex;
    QWaitCondition m_opened;
    int m_passes = kAll;
    int m_asked = 0;
    bool m_isHolding = false;
};

} // namespace

class ListingTurnsTest : public QObject, ListingRig {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        begin(m_gate.calendar());
        add(u"a"_s, kToday, 3, kEditor, u"heron"_s);
        open();
        // Three questions, each about days: the rows, the counts, and the matches by day.
        listing().setAppFilter(kEditor);
        passDebounce();
        QCOMPARE(ids(), u"a2 a1 a0"_s);
    }
    void cleanup()
    {
        m_gate.open();
        end();
    }

    void whatIsOvertakenAtAnyQuestionShowsNothing_data()
    {
        QTest::addColumn<int>("passes");
        QTest::newRow("the rows") << 0;
        QTest::newRow("the counts") << 1;
        QTest::newRow("the matches by day") << 2;
    }
    void whatIsOvertakenAtAnyQuestionShowsNothing()
    {
        QFETCH(int, passes);
        add(u"b"_s, kToday + 10, 1, kEditor, u"egret"_s);
        QSignalSpy lists(&listing(), &Listing::memoriesChanged);
        QSignalSpy counts(&listing(), &Listing::statsChanged);
        const int asked = m_gate.asked();
        m_gate.holdAfter(passes);
        const auto overtaken = listing().refresh();
        QTRY_VERIFY(m_gate.isHolding());
        QCOMPARE(m_gate.asked(), asked + passes + 1);
        listing().setQuery(u"egret"_s);
        m_gate.open();
        settleLibrary();
        // Nothing was shown, and nothing more asked for.
        QCOMPARE(lists.count(), 0);
        QCOMPARE(counts.count(), 0);
        QCOMPARE(ids(), u"a2 a1 a0"_s);
        QCOMPARE(m_gate.asked(), asked + passes + 1);
        QVERIFY2(listing().isLoading(), "the newer one owns that");
        passDebounce();
        QCOMPARE(ids(), u"b0"_s);
        QCOMPARE(lists.count(), 1);
        QCOMPARE(listing().stats().count, 4);
        QCOMPARE(error(), QString());
    }

    void anOldFailureNeverCoversANewerSuccess()
    {
        m_gate.holdAfter(0);
        const auto first = listing().refresh();
        QTRY_VERIFY(m_gate.isHolding());
        breakLibrary();
        listing().setQuery(u"heron"_s);
        QTRY_VERIFY(m_rig->clock.sleepers() > 0);
        m_gate.open();
        QCoro::waitFor(first);
        QVERIFY2(listing().isLoading(), "the newer one owns that");
        mendLibrary();
        passDebounce();
        QCOMPARE(error(), QString());
        QCOMPARE(ids(), u"a2 a1 a0"_s);
        QVERIFY(!listing().isLoading());
    }

    void whatIsDeletedDoesNotComeBackWithAnOlderList()
    {
        listing().setSelectedID(u"a1"_s);
        m_gate.holdAfter(1);
        const auto older = listing().refresh();
        // It has its rows, with what is deleted now, and waits for the counts.
        QTRY_VERIFY(m_gate.isHolding());
        listing().deleteSelected();
        listing().closeWorkspace();
        m_gate.open();
        QTRY_COMPARE(selected(), u"a0"_s);
        settleLibrary();
        QCOMPARE(ids(), QString());
        listing().openWorkspace();
        QTRY_COMPARE(ids(), u"a2 a0"_s);
        QCOMPARE(selected(), u"a0"_s);
        QVERIFY(!listing().isLoading());
    }

    void whatIsDeletedIsOffAListThatCannotBeMadeAnew()
    {
        listing().setSelectedID(u"a1"_s);
        listing().deleteSelected();
        drainLibrary();
        breakLibrary();
        QTRY_COMPARE(ids(), u"a2 a0"_s);
        QTRY_VERIFY(!listing().isLoading());
        QCOMPARE(selected(), u"a0"_s);
        QVERIFY2(error().contains(u"no such table"_s), qPrintable(error()));
        mendLibrary();
    }

    void matchesByDayThatCannotBeHadLeaveTheListThatIsThere()
    {
        add(u"b"_s, kToday + 10, 1, kEditor, u"egret"_s);
        m_gate.holdAfter(2);
        QSignalSpy lists(&listing(), &Listing::memoriesChanged);
        const auto failing = listing().refresh();
        // The rows and the counts are there by then.
        QTRY_VERIFY(m_gate.isHolding());
        breakLibrary();
        m_gate.open();
        QTRY_VERIFY(!listing().isLoading());
        QVERIFY2(error().contains(u"no such table"_s), qPrintable(error()));
        QCOMPARE(lists.count(), 0);
        QCOMPARE(ids(), u"a2 a1 a0"_s);
        QCOMPARE(listing().stats().count, 3);
        QCOMPARE(listing().dayMatches(), std::optional(QMap<Date, qsizetype>{{kToday, 3}}));
        mendLibrary();
        refresh();
        QCOMPARE(ids(), u"b0 a2 a1 a0"_s);
        QCOMPARE(listing().dayMatches(), std::optional(QMap<Date, qsizetype>{{kToday, 4}}));
    }

    void theSameDeletedTwiceIsGoneOnce()
    {
        listing().setSelectedID(u"a1"_s);
        listing().deleteSelected();
        listing().deleteSelected();
        settleLibrary();
        QCOMPARE(ids(), u"a2 a0"_s);
        QCOMPARE(selected(), u"a0"_s);
        QCOMPARE(error(), QString());
    }

    void whatIsDeletedStaysSelectedUntilItIsGone()
    {
        m_sql->run(u"DELETE FROM memories WHERE id <> 'a1'"_s);
        refresh();
        QCOMPARE(ids(), u"a1"_s);
        m_gate.holdAfter(0);
        listing().deleteSelected();
        QTRY_VERIFY(m_gate.isHolding());
        // It is out of the library, and the list has not heard of that.
        QCOMPARE(m_sql->rows(u"SELECT id FROM memories"_s), QStringList());
        QCOMPARE(selected(), u"a1"_s);
        QCOMPARE(ids(), u"a1"_s);
        m_gate.open();
        settleLibrary();
        QCOMPARE(selected(), u"none"_s);
        QCOMPARE(ids(), QString());
    }

    void aDeletionGoesOnWithItsNextWhateverWasChosenMeanwhile()
    {
        m_gate.holdAfter(0);
        const auto before = listing().refresh();
        QTRY_VERIFY(m_gate.isHolding());
        listing().setSelectedID(u"a1"_s);
        listing().deleteSelected();
        listing().setSelectedID(u"a2"_s);
        m_gate.open();
        settleLibrary();
        QCOMPARE(ids(), u"a2 a0"_s);
        QCOMPARE(selected(), u"a0"_s);
    }

    void aListByMeaningStaysOneWhenOneOfItIsDeleted()
    {
        const QList<Memory> found = {listing().memories().at(2), listing().memories().at(0)};
        listing().showByMeaning(found);
        listing().setSelectedID(found.first().id);
        listing().deleteSelected();
        settleLibrary();
        QVERIFY(listing().isListedByMeaning());
        QCOMPARE(ids(), u"a2"_s);
        QCOMPARE(selected(), u"a2"_s);
        QCOMPARE(listing().stats().count, 2);
        listing().setQuery(u"heron"_s);
        passDebounce();
        QCOMPARE(ids(), u"a2 a1"_s);
    }

    void aListFoundByMeaningIsNoListOfTheFilters()
    {
        // More than a page of all history, and made longer.
        add(u"old"_s, kToday - 3 * kDay, 1600);
        listing().setDay(std::nullopt);
        passDebounce();
        listing().showEarlier();
        settleLibrary();
        QCOMPARE(listing().memories().size(), 1603);
        listing().showByMeaning({listing().memories().at(1550)});
        QCOMPARE(selected(), u"old52"_s);
        // There and back: the same filters as before, and a list of their first page.
        listing().setDay(kToday);
        listing().setDay(std::nullopt);
        passDebounce();
        QVERIFY(!listing().isListedByMeaning());
        QCOMPARE(listing().memories().size(), 1500);
        QCOMPARE(selected(), u"a2"_s);
    }

    void whatWasTypedAndTakenBackEndsTheStepToEarlierOnes()
    {
        add(u"old"_s, kToday - 3 * kDay, 1600);
        listing().setDay(std::nullopt);
        passDebounce();
        QCOMPARE(listing().memories().size(), 1500);
        m_gate.holdAfter(0);
        listing().showEarlier();
        QTRY_VERIFY(m_gate.isHolding());
        listing().setQuery(u"x"_s);
        listing().setQuery({});
        m_gate.open();
        passDebounce();
        QCOMPARE(listing().memories().size(), 1500);
        QCOMPARE(selected(), u"a2"_s);
    }

private:
    /// Until the library has answered all that it is asked, and the list has heard of it.
    void settleLibrary()
    {
        for (int turn = 0; turn < 10; ++turn) {
            QCoreApplication::processEvents();
            drainLibrary();
        }
        QCoreApplication::processEvents();
    }

    DaysGate m_gate;
};

QTEST_GUILESS_MAIN(ListingTurnsTest)
#include "ListingTurnsTest.moc"
