// SPDX-License-Identifier: Apache-2.0
//
// A thousand random goes through the list, whatever is under way, held at each moment against one
// that has the whole library at once.
//
// What the test does to the library past the store is followed by a refresh, as what the recorder
// does is. So the newest question is always about the library as it is.
#include "tests/Core/RandomRounds.h"
#include "tests/Model/ListingSight.h"

#include <QRandomGenerator>
#include <QScopedValueRollback>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

constexpr int kSequencesALibrary = 100;
constexpr int kSteps = 8;

const QString kBrowser = u"Browser"_s;

} // namespace

class ListingRandomTest : public QObject, ListingSight {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { end(); }

    void theListIsWhatTheLibraryHolds_data()
    {
        QTest::addColumn<int>("library");
        const int libraries = (randomRounds(1000) + kSequencesALibrary - 1) / kSequencesALibrary;
        for (int library = 0; library < libraries; ++library)
            QTest::addRow("library %d", library) << library;
    }
    void theListIsWhatTheLibraryHolds()
    {
        QFETCH(int, library);
        fillLibrary();
        for (int sequence = 0; sequence < kSequencesALibrary && m_trouble.isEmpty(); ++sequence) {
            m_random.seed(static_cast<quint32>(library * kSequencesALibrary + sequence));
            m_log = QStringList{u"sequence %1"_s.arg(sequence)};
            forgetError();
            if (upTo(3) == 0)
                choose({});
            for (int number = 0; number < kSteps && m_trouble.isEmpty(); ++number)
                step();
            calm();
        }
        QVERIFY2(m_trouble.isEmpty(), qPrintable(m_trouble));
        QVERIFY2(m_published > kSequencesALibrary / 2, "hardly a list was seen");
    }

private:
    void fillLibrary()
    {
        begin();
        forget();
        m_added = 0;
        // More than two pages, before yesterday.
        addRows(u"old"_s, kToday - 12 * kDay, 3050, kBrowser, u"heron"_s, 300);
        addRows(u"yesterday"_s, kToday - kDay, 20, kEditor, u"heron egret"_s, 600);
        addRows(u"today"_s, kToday, 20, kBrowser, u"egret"_s, 600);
        watch();
        open();
        calm();
    }

    int upTo(int count) { return m_random.bounded(count); }
    template <typename T>
    T oneOf(const QList<T>& values)
    {
        return values.at(upTo(static_cast<int>(values.size())));
    }

    /// Something the user or the recorder does, whatever is under way.
    void step()
    {
        using Step = void (ListingRandomTest::*)();
        static const QList<std::pair<QString, Step>> kAll = {
            {u"type"_s, &ListingRandomTest::type},
            {u"day"_s, &ListingRandomTest::chooseDay},
            {u"app"_s, &ListingRandomTest::chooseApp},
            {u"capture"_s, &ListingRandomTest::capture},
            {u"capture"_s, &ListingRandomTest::capture},
            {u"prune"_s, &ListingRandomTest::prune},
            {u"delete"_s, &ListingRandomTest::deleteSelected},
            {u"delete in peace"_s, &ListingRandomTest::deleteInPeace},
            {u"step"_s, &ListingRandomTest::stepAlong},
            {u"select"_s, &ListingRandomTest::select},
            {u"break or mend"_s, &ListingRandomTest::breakOrMend},
            {u"wait"_s, &ListingRandomTest::wait},
            {u"wait"_s, &ListingRandomTest::wait},
            {u"calm"_s, &ListingRandomTest::calm},
        };
        const auto& [name, happens] = oneOf(kAll);
        m_log.append(name);
        std::invoke(happens, this);
        // Few lists are so long that they can be longer.
        if (m_plain.canShowEarlier() && upTo(3) == 0)
            showEarlier();
        turn();
    }

    void type()
    {
        PlainLibrary::Filters filters = m_plain.filters;
        filters.query = oneOf<QString>({{}, u"h"_s, u"heron"_s, u"egr"_s, u"-"_s});
        choose(filters);
    }
    void chooseDay()
    {
        PlainLibrary::Filters filters = m_plain.filters;
        filters.day = oneOf<std::optional<Date>>(
            {std::nullopt, std::nullopt, kToday, kToday - kDay, kToday - 30 * kDay});
        choose(filters);
    }
    void chooseApp()
    {
        PlainLibrary::Filters filters = m_plain.filters;
        filters.app = oneOf<std::optional<QString>>({std::nullopt, kBrowser, kEditor});
        choose(filters);
    }
    void choose(const PlainLibrary::Filters& filters)
    {
        m_plain.setFilters(filters);
        listing().setQuery(filters.query);
        listing().setDay(filters.day);
        listing().setAppFilter(filters.app);
    }

    void capture()
    {
        if (m_isBroken)
            return;
        drainLibrary();
        ++m_added;
        // Now and then more than a list of the same filters has room for.
        const bool areMany = upTo(25) == 0;
        addRows(u"new%1-"_s.arg(m_added), kToday + 20'000 + m_added, areMany ? 130 : 1 + upTo(3),
                oneOf<QString>({kEditor, kBrowser}), oneOf<QString>({u"heron"_s, u"egret"_s}), 1);
        refreshAsAfterASave();
    }
    void prune()
    {
        if (m_isBroken)
            return;
        drainLibrary();
        m_sql->rows(u"DELETE FROM memories WHERE id = ?1"_s, {m_library.oldest()});
        m_library.remove(m_library.oldest());
        refreshAsAfterASave();
    }
    void breakOrMend()
    {
        // It answers more often than not.
        if (!m_isBroken && upTo(3) > 0)
            return;
        drainLibrary();
        m_isBroken ? mendLibrary() : breakLibrary();
        m_isBroken = !m_isBroken;
        refreshAsAfterASave();
    }
    void refreshAsAfterASave()
    {
        if (upTo(2) == 0)
            forgetError();
        const auto refreshing = listing().refresh();
    }

    void showEarlier()
    {
        m_log.append(u"earlier"_s);
        m_plain.showEarlier();
        listing().showEarlier();
    }
    void stepAlong()
    {
        const int delta = oneOf<int>({1, -1, -1, -5000});
        m_plain.step(delta);
        const QScopedValueRollback<bool> acting(m_isActing, true);
        listing().step(delta);
        checkSelection();
    }
    void select()
    {
        m_plain.selected = oneOf(m_plain.shown() + QStringList{u"nowhere"_s});
        const QScopedValueRollback<bool> acting(m_isActing, true);
        listing().setSelectedID(m_plain.selected);
    }
    void deleteSelected()
    {
        if (m_plain.selected)
            m_deletions.append({*m_plain.selected, m_plain.neighbour(), m_isBroken});
        listing().deleteSelected();
    }
    /// With nothing else under way it is known what comes of it.
    void deleteInPeace()
    {
        calm();
        forgetError();
        const auto before = m_plain.selected;
        const auto next = m_plain.neighbour();
        deleteSelected();
        calm();
        if (next && m_plain.selected != next)
            tell(u"%1 is selected after %2 was deleted"_s.arg(selected(), *before));
        if (before && m_isBroken && !m_toldOf.contains(kNotDeleted))
            tell(u"nothing is said of a deletion that failed"_s);
    }

    void wait() { m_rig->clock.advance(0.05 * upTo(10)); }
    void turn()
    {
        for (int times = upTo(4); times > 0; --times) {
            if (upTo(2) == 0)
                drainLibrary();
            QCoreApplication::processEvents();
            checkSelection();
        }
    }

    /// Until nothing is on its way.
    void calm()
    {
        constexpr int kMostTurns = 1000;
        int quiet = 0;
        for (int turns = 0; quiet < 2 && turns < kMostTurns; ++turns) {
            QCoreApplication::processEvents();
            drainLibrary();
            QCoreApplication::processEvents();
            const bool isQuiet = m_rig->clock.sleepers() == 0 && !listing().isLoading();
            quiet = isQuiet ? quiet + 1 : 0;
            m_rig->clock.advance(0.2);
        }
        if (quiet < 2)
            tell(u"it does not come to rest"_s);
        for (const Deletion& deletion : std::exchange(m_deletions, {})) {
            if (!deletion.fails)
                m_library.remove(deletion.id);
        }
        checkWhatIsOnShow();
    }

    void addRows(const QString& prefix, Date start, int count, const QString& app,
                 const QString& text, double apart)
    {
        add(prefix, start, count, app, text, apart);
        for (int number = 0; number < count; ++number)
            m_library.add({prefix + QString::number(number), start + number * apart, app, text});
    }

    QRandomGenerator m_random;
    int m_added = 0;
};

QTEST_GUILESS_MAIN(ListingRandomTest)
#include "ListingRandomTest.moc"
