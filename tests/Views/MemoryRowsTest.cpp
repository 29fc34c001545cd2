// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Workspace/MemoryRows.h"

#include "tests/Core/RandomRounds.h"
#include "tests/Model/ListingRig.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

#include <random>

using namespace Qt::StringLiterals;
using namespace mossbank;

class MemoryRowsTest : public QObject, private ListingRig {
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup()
    {
        m_tester.reset();
        m_rows.reset();
        end();
    }

    void theStripRunsFromTheOldestAndTheMatchesFromTheNewest()
    {
        add(u"m"_s, kToday + 60, 3);
        show();
        QCOMPARE(shown(), u"m0 m1 m2"_s);
        m_rows->setOrder(MemoryRows::Order::NewestFirst);
        QCOMPARE(shown(), u"m2 m1 m0"_s);
    }

    void theSelectedOneIsFoundInBothOrders()
    {
        add(u"m"_s, kToday + 60, 3);
        show();
        listing().setSelectedID(u"m0"_s);
        QCOMPARE(m_rows->selectedRow(), 0);
        m_rows->setOrder(MemoryRows::Order::NewestFirst);
        QCOMPARE(m_rows->selectedRow(), 2);
        m_rows->choose(0);
        QCOMPARE(selected(), u"m2"_s);
        m_rows->choose(17);
        m_rows->choose(-1);
        QCOMPARE(selected(), u"m2"_s);
    }

    void aListOfNothingHasNoSelectedRow()
    {
        show();
        QCOMPARE(m_rows->rowCount(), 0);
        QCOMPARE(m_rows->selectedRow(), -1);
    }

    /// Or a strip that is being looked at would jump with every capture.
    void whatStaysIsNotTakenAwayAndPutBack_data()
    {
        QTest::addColumn<MemoryRows::Order>("order");
        QTest::addColumn<int>("first");
        QTest::newRow("strip") << MemoryRows::Order::OldestFirst << 3;
        QTest::newRow("matches") << MemoryRows::Order::NewestFirst << 0;
    }
    void whatStaysIsNotTakenAwayAndPutBack()
    {
        QFETCH(MemoryRows::Order, order);
        QFETCH(int, first);
        add(u"m"_s, kToday + 60, 3);
        show();
        m_rows->setOrder(order);
        QSignalSpy resets(m_rows.get(), &QAbstractItemModel::modelReset);
        QSignalSpy removals(m_rows.get(), &QAbstractItemModel::rowsRemoved);
        QSignalSpy insertions(m_rows.get(), &QAbstractItemModel::rowsInserted);
        add(u"new"_s, kToday + 600, 2);
        refresh();
        QCOMPARE(m_rows->rowCount(), 5);
        QCOMPARE(resets.size() + removals.size(), 0);
        QCOMPARE(insertions.size(), 1);
        QCOMPARE(insertions[0][1].toInt(), first);
        QCOMPARE(insertions[0][2].toInt(), first + 1);
    }

    void anotherListIsAnotherList()
    {
        add(u"m"_s, kToday + 60, 40);
        add(u"other"_s, kToday - kDay + 60, 40);
        show();
        QSignalSpy resets(m_rows.get(), &QAbstractItemModel::modelReset);
        listing().setDay(kToday - kDay);
        passDebounce();
        QCOMPARE(m_rows->rowCount(), 40);
        QVERIFY(shown().startsWith(u"other0 other1"_s));
    }

    void anotherDayIsAnotherListAlsoWithTheSameRows()
    {
        add(u"m"_s, kToday + 60, 3);
        add(u"other"_s, kToday - kDay + 60, 1);
        show();
        QSignalSpy resets(m_rows.get(), &QAbstractItemModel::modelReset);
        listing().setDay(std::nullopt);
        passDebounce();
        QCOMPARE(shown(), u"other0 m0 m1 m2"_s);
        QCOMPARE(resets.size(), 1);
        add(u"later"_s, kToday + 3600, 1);
        refresh();
        QCOMPARE(shown(), u"other0 m0 m1 m2 later0"_s);
        QCOMPARE(resets.size(), 1);
    }

    void whateverBecomesOfTheListTheRowsAreIts()
    {
        for (int round = 0; round < randomRounds(30); ++round) {
            const auto seed = static_cast<unsigned>(round);
            std::mt19937 dice(seed);
            m_tester.reset();
            m_rows.reset();
            begin();
            add(u"m"_s, kToday + 60, static_cast<int>(dice() % 60), kEditor, kText, 10);
            show();
            if (dice() % 2 == 0)
                m_rows->setOrder(MemoryRows::Order::NewestFirst);
            for (int change = 0; change < 12; ++change) {
                alter(dice, change);
                refresh();
                QVERIFY2(isInStep(), qPrintable(u"round %1, change %2"_s.arg(round).arg(change)));
            }
        }
    }

    void secondsAreShownWhereNeighboursAreClose()
    {
        add(u"m"_s, kToday + 3660, 2, kEditor, kText, 120);
        show();
        QCOMPARE(time(0), m_rig->surroundings().calendar().shortTime(kToday + 3660));
        QSignalSpy changes(m_rows.get(), &QAbstractItemModel::dataChanged);
        add(u"close"_s, kToday + 3661, 1);
        refresh();
        QCOMPARE(time(0), m_rig->surroundings().calendar().timeWithSeconds(kToday + 3660));
        QVERIFY(!changes.isEmpty());
    }

    void amongAllDaysTheDayIsTold()
    {
        add(u"m"_s, kToday - kDay + 3600, 1);
        add(u"n"_s, kToday + 60, 1);
        show();
        listing().setDay(std::nullopt);
        passDebounce();
        const Calendar calendar = m_rig->surroundings().calendar();
        QCOMPARE(time(0), calendar.shortMonthAndDay(kToday - kDay) + u", "_s +
                              calendar.shortTime(kToday - kDay + 3600));
        QCOMPARE(time(1), calendar.shortTime(kToday + 60));
        // Also on rows that were there already.
        listing().setDay(kToday - kDay);
        passDebounce();
        QCOMPARE(time(0), calendar.shortTime(kToday - kDay + 3600));
        listing().setDay(std::nullopt);
        passDebounce();
        QVERIFY(time(0).startsWith(calendar.shortMonthAndDay(kToday - kDay)));
    }

    void aRowTellsWhatItIsOf()
    {
        add(u"m"_s, kToday + 60, 1, u"Quill"_s, u"a heron"_s);
        show();
        const QModelIndex row = m_rows->index(0);
        QCOMPARE(m_rows->data(row, MemoryRows::AppRole).toString(), u"Quill"_s);
        QCOMPARE(m_rows->data(row, MemoryRows::TextRole).toString(), u"a heron"_s);
        QCOMPARE(m_rows->data(row, MemoryRows::HelpRole).toString(), u"Quill · "_s + time(0));
        QCOMPARE(m_rows->data(row, MemoryRows::PictureRole).toUrl(),
                 QUrl(u"image://thumbnail/m0.jpg"_s));
    }

private:
    void show()
    {
        m_rows =
            std::make_unique<MemoryRows>(listing(), m_rig->clock, m_rig->surroundings().calendar);
        m_tester = std::make_unique<QAbstractItemModelTester>(
            m_rows.get(), QAbstractItemModelTester::FailureReportingMode::Fatal);
        open();
    }

    /// Adds and removes in places of all sorts.
    void alter(std::mt19937& dice, int change)
    {
        const auto below = [&](unsigned most) {
            return static_cast<int>(dice() % most);
        };
        for (int part = below(4); part >= 0; --part) {
            if (below(2) == 0)
                add(u"c%1p%2x"_s.arg(change).arg(part), kToday + 30 + below(700), 1 + below(5),
                    kEditor, kText, 7);
            else
                m_sql->run(u"DELETE FROM memories WHERE rowid % %1 = %2"_s.arg(3 + below(9))
                               .arg(below(3)));
        }
    }

    bool isInStep() const
    {
        QStringList wanted = idsOnShow();
        if (m_rows->order() == MemoryRows::Order::OldestFirst)
            std::reverse(wanted.begin(), wanted.end());
        return shown() == wanted.join(u' ');
    }

    /// The names of the pictures, which are those of the rows.
    QString shown() const
    {
        QStringList ids;
        for (int row = 0; row < m_rows->rowCount(); ++row)
            ids.append(m_rows->data(m_rows->index(row), MemoryRows::PictureRole)
                           .toUrl()
                           .fileName()
                           .chopped(4));
        return ids.join(u' ');
    }

    QString time(int row) const
    {
        return m_rows->data(m_rows->index(row), MemoryRows::TimeRole).toString();
    }

    std::unique_ptr<MemoryRows> m_rows;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

QTEST_MAIN(MemoryRowsTest)
#include "MemoryRowsTest.moc"
