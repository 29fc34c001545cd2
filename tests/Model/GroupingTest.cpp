// SPDX-License-Identifier: Apache-2.0
//
// When the list on show is grouped into stretches of work.
#include "Mossbank/Model/Grouping.h"

#include "tests/Model/ListingRig.h"

#include <QSignalSpy>

using namespace mossbank;
using namespace Qt::StringLiterals;
using Lens = Listing::Lens;

class GroupingTest : public QObject, ListingRig {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        begin();
        m_grouping = std::make_unique<Grouping>(listing());
    }
    void cleanup()
    {
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

    void thoseAtOneTimeKeepTheirOrder()
    {
        add(u"a"_s, kToday, 3, kEditor, kText, 0);
        listing().setLens(Lens::Timeline);
        open();
        waitForGroups();
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
        listing().setLens(Lens::Timeline);
        open();
        waitForGroups();
        QCOMPARE(written(), u"a0-a1"_s);
        QSignalSpy changes(m_grouping.get(), &Grouping::sessionsChanged);
        // The same list is not grouped anew.
        refresh();
        QVERIFY(!m_grouping->isGrouping());
        add(u"b"_s, kToday + 10, 1);
        refresh();
        QVERIFY(m_grouping->isGrouping());
        QCOMPARE(written(), u"a0-a1"_s);
        waitForGroups();
        QCOMPARE(written(), u"a0-b0"_s);
        QCOMPARE(changes.count(), 1);
    }

    void anEmptyListHasNoGroups()
    {
        add(u"a"_s, kToday, 2);
        listing().setLens(Lens::Timeline);
        open();
        waitForGroups();
        listing().setQuery(u"stork"_s);
        passDebounce();
        QVERIFY(sessions().isEmpty());
        QVERIFY(!m_grouping->isGrouping());
    }

    void aGroupingThatIsOvertakenIsDropped()
    {
        add(u"a"_s, kToday, 2);
        listing().setLens(Lens::Timeline);
        open();
        QSignalSpy changes(m_grouping.get(), &Grouping::sessionsChanged);
        listing().setLens(Lens::Moments);
        listing().setLens(Lens::Timeline);
        listing().setLens(Lens::Moments);
        for (int turn = 0; turn < 20; ++turn)
            QTest::qWait(5);
        QVERIFY(sessions().isEmpty());
        QVERIFY(!m_grouping->isGrouping());
    }

    void whoGoesMeanwhileIsNotMissed()
    {
        add(u"a"_s, kToday, 100);
        listing().setLens(Lens::Timeline);
        open();
        QCoreApplication::processEvents();
        m_grouping.reset();
        QTest::qWait(50);
    }

private:
    const QList<Session>& sessions() const { return m_grouping->sessions(); }

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
