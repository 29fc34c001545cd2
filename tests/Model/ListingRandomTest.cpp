// SPDX-License-Identifier: Apache-2.0
//
// A thousand random goes through the list, held against the whole library read past it.
#include "tests/Model/ListingRig.h"

#include <QDeadlineTimer>
#include <QRandomGenerator>
#include <QThread>

#include <algorithm>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

constexpr int kSequences = 1000;
constexpr int kSteps = 7;
constexpr qsizetype kPage = 1500;

} // namespace

class ListingRandomTest : public QObject, ListingRig {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        begin();
        m_added = 0;
        // More than a page, before yesterday.
        add(u"old"_s, kToday - 9 * kDay, 1600, u"Browser"_s, u"heron"_s, 300);
        add(u"yesterday"_s, kToday - kDay, 20, kEditor, u"heron egret"_s, 600);
        add(u"today"_s, kToday, 20, u"Browser"_s, u"egret"_s, 600);
        open();
    }
    void cleanup() { end(); }

    void theListIsWhatTheLibraryHolds()
    {
        for (int sequence = 0; sequence < kSequences; ++sequence) {
            m_random.seed(static_cast<quint32>(sequence));
            m_log.clear();
            for (int number = 0; number < kSteps; ++number)
                step();
            mend();
            calm();
            // The last word has the library as it is now.
            m_rig->recorder->setErrorMessage(std::nullopt);
            refresh();
            const QString trouble = troubleWithList();
            QVERIFY2(trouble.isEmpty(),
                     qPrintable(u"%1: %2, after %3"_s.arg(QString::number(sequence), trouble,
                                                          m_log.join(u", "_s))));
        }
    }

    void aListAloneIsExactlyWhatIsMeant()
    {
        for (int sequence = 0; sequence < kSequences / 10; ++sequence) {
            m_random.seed(static_cast<quint32>(kSequences + sequence));
            m_log.clear();
            for (int number = 0; number < kSteps; ++number) {
                const QStringList before = idsOnShow();
                const bool isSameList = settledStep();
                const QString trouble =
                    isSameList ? troubleAfterRefresh(before) : troubleWithList();
                QVERIFY2(trouble.isEmpty(),
                         qPrintable(u"%1: %2, after %3"_s.arg(QString::number(sequence), trouble,
                                                              m_log.join(u", "_s))));
            }
        }
    }

private:
    int upTo(int count) { return m_random.bounded(count); }

    void type()
    {
        static const QStringList kQueries = {{}, u"h"_s, u"heron"_s, u"egr"_s, u"stork"_s, u"!"_s};
        listing().setQuery(kQueries.at(upTo(static_cast<int>(kQueries.size()))));
    }
    void chooseDay()
    {
        static const QList<std::optional<Date>> kDays = {std::nullopt, kToday, kToday - kDay,
                                                         kToday - 30 * kDay};
        listing().setDay(kDays.at(upTo(static_cast<int>(kDays.size()))));
    }
    void chooseApp()
    {
        static const QList<std::optional<QString>> kApps = {std::nullopt, u"Browser"_s, kEditor,
                                                            u"Nobody"_s};
        listing().setAppFilter(kApps.at(upTo(static_cast<int>(kApps.size()))));
    }
    void capture()
    {
        ++m_added;
        add(u"new%1-"_s.arg(m_added), kToday + 20'000 + m_added, 1 + upTo(3),
            upTo(2) == 0 ? kEditor : u"Browser"_s, upTo(2) == 0 ? u"heron"_s : u"egret"_s);
    }
    void select()
    {
        if (const auto& rows = listing().memories(); !rows.isEmpty())
            listing().setSelectedID(rows.at(upTo(static_cast<int>(rows.size()))).id);
    }
    void turn()
    {
        for (int times = upTo(4); times > 0; --times)
            QCoreApplication::processEvents();
    }
    void mend()
    {
        if (std::exchange(m_isBroken, false))
            mendLibrary();
    }

    /// Something the user or the recorder does, whatever is under way.
    void step()
    {
        static const QStringList kNames = {u"type"_s,    u"day"_s,    u"app"_s,   u"capture"_s,
                                           u"earlier"_s, u"delete"_s, u"step"_s,  u"break"_s,
                                           u"mend"_s,    u"wait"_s,   u"select"_s};
        const QString name = kNames.at(upTo(static_cast<int>(kNames.size())));
        m_log.append(name);
        if (name == u"type")
            type();
        else if (name == u"day")
            chooseDay();
        else if (name == u"app")
            chooseApp();
        else if (name == u"capture" && !m_isBroken)
            capture();
        else if (name == u"earlier")
            listing().showEarlier();
        else if (name == u"delete")
            listing().deleteSelected();
        else if (name == u"step")
            listing().step(upTo(2) == 0 ? 1 : -1);
        else if (name == u"break" && !m_isBroken) {
            breakLibrary();
            m_isBroken = true;
        } else if (name == u"mend")
            mend();
        else if (name == u"wait")
            m_rig->clock.advance(0.05 * upTo(6));
        else if (name == u"select")
            select();
        // As after a save.
        if (upTo(3) == 0)
            listing().refresh();
        turn();
    }

    /// The same, waited for. Whether the list is of the same filters as before.
    bool settledStep()
    {
        switch (upTo(5)) {
        case 0:
            m_log.append(u"type"_s);
            type();
            break;
        case 1:
            m_log.append(u"day"_s);
            chooseDay();
            break;
        case 2:
            m_log.append(u"app"_s);
            chooseApp();
            break;
        default:
            m_log.append(u"capture"_s);
            capture();
            select();
            m_selected = selected();
            refresh();
            calm();
            return true;
        }
        calm();
        return false;
    }

    /// Looks far more often than is usual: it is asked thousands of times.
    template <typename Condition>
    static bool comes(Condition condition)
    {
        QDeadlineTimer deadline(20'000);
        while (!condition()) {
            if (deadline.hasExpired())
                return false;
            QCoreApplication::processEvents();
            QThread::usleep(100);
        }
        return true;
    }

    /// Until nothing is on its way.
    void calm()
    {
        const bool isCalm = comes([this] {
            QCoreApplication::processEvents(); // what was begun just now goes to sleep first
            m_rig->clock.advance(0.2);
            QCoreApplication::processEvents();
            return m_rig->clock.sleepers() == 0 && !listing().isLoading();
        });
        QVERIFY(isCalm);
        // What was deleted is followed by a list.
        for (int times = 0; times < 3; ++times) {
            m_rig->store->stats().waitForFinished();
            for (int turns = 0; turns < 5; ++turns)
                QCoreApplication::processEvents();
        }
        QVERIFY(comes([this] { return !listing().isLoading(); }));
    }

    QStringList idsOnShow() const
    {
        QStringList ids;
        for (const Memory& memory : m_listing->memories())
            ids.append(memory.id);
        return ids;
    }

    /// All that matches, newest first, by nothing but SQL.
    QStringList everything()
    {
        QStringList conditions = {u"1"_s};
        if (const auto& day = listing().day())
            conditions.append(u"timestamp >= %1 AND timestamp < %2"_s.arg(
                QString::number(day->secondsSince1970, 'f', 0),
                QString::number(day->secondsSince1970 + kDay, 'f', 0)));
        if (const auto& app = listing().appFilter())
            conditions.append(u"app_name = '%1'"_s.arg(*app));
        if (const QString& query = listing().query(); query == u"!"_s)
            conditions.append(u"0"_s);
        else if (!query.isEmpty())
            conditions.append(u"(' ' || text) LIKE '% %1%'"_s.arg(query));
        return m_sql->rows(
            u"SELECT id FROM memories WHERE %1 ORDER BY timestamp DESC, rowid DESC"_s.arg(
                conditions.join(u" AND "_s)));
    }

    /// What is wrong with the list, whatever it was before. Empty for nothing.
    QString troubleWithList()
    {
        const QStringList all = everything();
        const QStringList shown = idsOnShow();
        if (listing().isLoading())
            return u"it is still loading"_s;
        if (!error().isEmpty())
            return error();
        if (shown != all.first(std::min(shown.size(), all.size())))
            return u"%1 rows are not the newest of %2"_s.arg(shown.size()).arg(all.size());
        if (shown.size() < std::min(all.size(), kPage))
            return u"%1 of %2 rows"_s.arg(shown.size()).arg(all.size());
        const bool isAll = shown.size() == all.size();
        if (isAll != (listing().extent() == Listing::Extent::Complete))
            return u"%1 of %2 rows are called %3"_s.arg(shown.size())
                .arg(all.size())
                .arg(static_cast<int>(listing().extent()));
        const bool isSelectionThere =
            listing().selectedID() ? shown.contains(*listing().selectedID()) : shown.isEmpty();
        if (!isSelectionThere)
            return u"%1 is selected"_s.arg(selected());
        if (listing().dayMatches().has_value() !=
            (!listing().query().isEmpty() || listing().appFilter().has_value()))
            return u"days are counted without a reason, or not with one"_s;
        return {};
    }

    /// The same after a refresh of the same list with a few rows more.
    QString troubleAfterRefresh(const QStringList& before)
    {
        if (const QString trouble = troubleWithList(); !trouble.isEmpty())
            return trouble;
        const QStringList shown = idsOnShow();
        if (!before.isEmpty() && !shown.contains(before.last()))
            return u"the last row is gone"_s;
        if (m_selected != u"none"_s && selected() != m_selected)
            return u"%1 was selected, and %2 is"_s.arg(m_selected, selected());
        return {};
    }

    QRandomGenerator m_random;
    QStringList m_log;
    QString m_selected;
    int m_added = 0;
    bool m_isBroken = false;
};

QTEST_GUILESS_MAIN(ListingRandomTest)
#include "ListingRandomTest.moc"
