// SPDX-License-Identifier: Apache-2.0
//
// When the list on show is grouped into stretches of work.
#include "Mossbank/Model/Grouping.h"

#include "MossbankCore/Support/Background.h"
#include "tests/Model/ListingRig.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QThread>

#include <dlfcn.h>

#include <atomic>

namespace {

/// Is there whenever a word is weighed, and can hold that up once.
struct Weighing {
    static inline std::atomic<bool> holdsNext = false;
    static inline std::atomic<bool> isHolding = false;
    static inline std::atomic<int> onMainThread = 0;
    static inline QSemaphore released{0};

    static void pass()
    {
        if (QThread::currentThread() == QCoreApplication::instance()->thread()) {
            ++onMainThread;
            return;
        }
        if (!holdsNext.exchange(false))
            return;
        isHolding = true;
        released.acquire();
        isHolding = false;
    }
};

} // namespace

// Stands before the C library's own for everything in this program.
extern "C" double log(double number) noexcept
{
    using Function = double (*)(double);
    static const auto original = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "log"));
    Weighing::pass();
    return original(number);
}

using namespace mossbank;
using namespace Qt::StringLiterals;
using Lens = Listing::Lens;

class GroupingTest : public QObject, ListingRig {
    Q_OBJECT

private Q_SLOTS:
    // One more for a grouping that is held up.
    void initTestCase() { poolForTheUser().setMaxThreadCount(2); }
    void init()
    {
        begin();
        m_grouping = std::make_unique<Grouping>(listing());
    }
    void cleanup()
    {
        letGo();
        m_grouping.reset();
        end();
    }

    void theDayIsGroupedWhileItsTimelineIsLookedAt()
    {
        add(u"a"_s, kToday, 11, kEditor, kText, 60);
        add(u"b"_s, kToday + 1200.5, 61, kEditor, kText, 60);
        add(u"c"_s, kToday + 1200.5 + 3660, 1);
        open();
        QVERIFY(sessions().isEmpty());
        QVERIFY(!m_grouping->isGrouping());
        listing().setLens(Lens::Timeline);
        QVERIFY(m_grouping->isGrouping());
        waitForGroups();
        QCOMPARE(written(), u"a0-a10 b0-b60 c0-c0+"_s);
        listing().setLens(Lens::Ask);
        QVERIFY(sessions().isEmpty());
        QVERIFY(!m_grouping->isGrouping());
        listing().setLens(Lens::Timeline);
        waitForGroups();
        QCOMPARE(written(), u"a0-a10 b0-b60 c0-c0+"_s);
    }

    void aPauseOfTenMinutesAndAnHourPartThem_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<double>("apart");
        QTest::addColumn<double>("last");
        QTest::addColumn<QString>("groups");
        QTest::newRow("a pause as long as may be") << 2 << 600.0 << 1200.0 << u"a0-b0"_s;
        QTest::newRow("a longer pause") << 2 << 600.01 << 1200.0 << u"a0-a0 a1-b0"_s;
        QTest::newRow("as long as may be") << 6 << 600.0 << 3600.0 << u"a0-b0"_s;
        QTest::newRow("longer") << 7 << 600.0 << 3600.01 << u"a0-a6 b0-b0+"_s;
    }
    void aPauseOfTenMinutesAndAnHourPartThem()
    {
        QFETCH(int, count);
        QFETCH(double, apart);
        QFETCH(double, last);
        QFETCH(QString, groups);
        add(u"a"_s, kToday, count, kEditor, kText, apart);
        add(u"b"_s, kToday + last, 1);
        group();
        QCOMPARE(written(), groups);
    }

    void aGroupHasFourWordsAndFourTitlesAtMost()
    {
        add(u"a"_s, kToday, 6, kEditor, u"alder birch cedar elder fir gorse"_s);
        m_sql->run(u"UPDATE memories SET title = 'letter ' || id"_s);
        group();
        QCOMPARE(sessions().first().keywords,
                 (QStringList{u"alder"_s, u"birch"_s, u"cedar"_s, u"elder"_s}));
        QCOMPARE(sessions().first().titles,
                 (QStringList{u"letter a0"_s, u"letter a1"_s, u"letter a2"_s, u"letter a3"_s}));
    }

    void thoseAtOneTimeKeepTheirOrder()
    {
        add(u"a"_s, kToday, 3, kEditor, kText, 0);
        group();
        QStringList ids;
        for (const Memory& memory : sessions().first().memories)
            ids.append(memory.id);
        QStringList onShow;
        for (const Memory& memory : listing().chronological())
            onShow.append(memory.id);
        QCOMPARE(ids, onShow);
    }

    void theOldGroupsStayUntilTheNewAreThere()
    {
        add(u"a"_s, kToday, 2);
        group();
        QCOMPARE(written(), u"a0-a1"_s);
        QSignalSpy changes(m_grouping.get(), &Grouping::sessionsChanged);
        // The same list is not grouped anew.
        refresh();
        QVERIFY(!m_grouping->isGrouping());
        add(u"b"_s, kToday + 10, 1);
        Weighing::holdsNext = true;
        refresh();
        QVERIFY(m_grouping->isGrouping());
        QTRY_VERIFY(Weighing::isHolding);
        QCOMPARE(written(), u"a0-a1"_s);
        QVERIFY(m_grouping->isGrouping());
        QCOMPARE(changes.count(), 0);
        letGo();
        QTRY_COMPARE(written(), u"a0-b0"_s);
        QVERIFY(!m_grouping->isGrouping());
        QCOMPARE(changes.count(), 1);
    }

    void theWindowNeverWaitsForIt()
    {
        Weighing::onMainThread = 0;
        add(u"a"_s, kToday, 2);
        group();
        QCOMPARE(sessions().first().keywords, QStringList{kText});
        QCOMPARE(Weighing::onMainThread, 0);
    }

    void anEmptyListHasNoGroups()
    {
        add(u"a"_s, kToday, 2);
        group();
        listing().setQuery(u"stork"_s);
        passDebounce();
        QVERIFY(sessions().isEmpty());
        QVERIFY(!m_grouping->isGrouping());
    }

    void aGroupingOfWhatIsLookedAtNoMoreIsDropped()
    {
        add(u"a"_s, kToday, 2);
        open();
        QSignalSpy changes(m_grouping.get(), &Grouping::sessionsChanged);
        Weighing::holdsNext = true;
        listing().setLens(Lens::Timeline);
        QTRY_VERIFY(Weighing::isHolding);
        listing().setLens(Lens::Moments);
        QVERIFY(!m_grouping->isGrouping());
        finish();
        QVERIFY(sessions().isEmpty());
        QVERIFY(!m_grouping->isGrouping());
        QCOMPARE(changes.count(), 0);
    }

    void anOlderOneThatEndsLaterIsDropped()
    {
        add(u"a"_s, kToday, 2);
        open();
        QSignalSpy changes(m_grouping.get(), &Grouping::sessionsChanged);
        Weighing::holdsNext = true;
        listing().setLens(Lens::Timeline);
        QTRY_VERIFY(Weighing::isHolding);
        add(u"b"_s, kToday + 10, 1);
        refresh();
        QVERIFY(m_grouping->isGrouping());
        waitForGroups();
        QVERIFY(Weighing::isHolding);
        QCOMPARE(written(), u"a0-b0"_s);
        finish();
        QCOMPARE(written(), u"a0-b0"_s);
        QCOMPARE(changes.count(), 1);
    }

    void anOlderOneDoesNotEndTheNewer()
    {
        add(u"a"_s, kToday, 2);
        open();
        // One after the other.
        poolForTheUser().setMaxThreadCount(1);
        QSignalSpy changes(m_grouping.get(), &Grouping::sessionsChanged);
        QSignalSpy states(m_grouping.get(), &Grouping::isGroupingChanged);
        Weighing::holdsNext = true;
        listing().setLens(Lens::Timeline);
        QTRY_VERIFY(Weighing::isHolding);
        add(u"b"_s, kToday + 10, 1);
        refresh();
        QCoreApplication::processEvents();
        finish();
        poolForTheUser().setMaxThreadCount(2);
        QTRY_COMPARE(written(), u"a0-b0"_s);
        QCOMPARE(changes.count(), 1);
        QCOMPARE(states.count(), 2);
    }

    void whoGoesMeanwhileIsNotMissed()
    {
        add(u"a"_s, kToday, 100);
        open();
        Weighing::holdsNext = true;
        listing().setLens(Lens::Timeline);
        QTRY_VERIFY(Weighing::isHolding);
        m_grouping.reset();
        finish();
    }

private:
    const QList<Session>& sessions() const { return m_grouping->sessions(); }

    void group()
    {
        listing().setLens(Lens::Timeline);
        open();
        waitForGroups();
    }
    static void letGo()
    {
        Weighing::holdsNext = false;
        if (Weighing::isHolding)
            Weighing::released.release();
    }
    /// What was held up comes to its end, and whoever waits for it hears of that.
    static void finish()
    {
        letGo();
        poolForTheUser().waitForDone();
        for (int turn = 0; turn < 5; ++turn)
            QCoreApplication::processEvents();
    }
    void waitForGroups() { QTRY_VERIFY(!m_grouping->isGrouping() && !sessions().isEmpty()); }

    QString written() const
    {
        QStringList parts;
        for (const Session& session : sessions())
            parts.append(session.memories.first().id + u'-' + session.memories.last().id +
                         (session.continues ? u"+"_s : QString()));
        return parts.join(u' ');
    }

    std::unique_ptr<Grouping> m_grouping;
};

QTEST_GUILESS_MAIN(GroupingTest)
#include "GroupingTest.moc"
