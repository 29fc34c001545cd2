// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/Listing.h"
#include "tests/Core/Library/RawSql.h"
#include "tests/Model/RecorderRig.h"

#include <QCoroTask>

#include <memory>

namespace mossbank {

/// A list over a real library, whose rows are put past the store: thousands in a moment.
class ListingRig {
protected:
    static constexpr double kDay = 86'400;
    /// The first moment of the day that the fake clock begins in.
    static constexpr Date kToday = {1'699'920'000};

    /// With the calendar of the library and of the list.
    void begin(const CalendarSource& calendar = RecorderRig::calendarOf(QTimeZone::utc()))
    {
        end();
        m_rig = std::make_unique<RecorderRig>(true, calendar);
        m_sql = std::make_unique<RawSql>(m_rig->libraryRoot() + QStringLiteral("/history.sqlite"));
        // What is put there need not outlive the machine.
        m_sql->run(QStringLiteral("PRAGMA synchronous = OFF"));
        // The store may be writing.
        m_sql->run(QStringLiteral("PRAGMA busy_timeout = 10000"));
        m_listing =
            std::make_unique<Listing>(m_rig->surroundings(), *m_rig->recorder, m_rig->store.get());
    }

    void end()
    {
        m_listing.reset();
        m_sql.reset();
        m_rig.reset();
    }

    Listing& listing() { return *m_listing; }

    /// So many screenshots, a second apart, the first at `start`. Their ids are their numbers after
    /// `prefix`, counted from 0.
    void add(const QString& prefix, Date start, int count, const QString& app = kEditor,
             const QString& text = kText, double apart = 1)
    {
        m_sql->rows(
            QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i "
                           "+ 1 < CAST(?3 AS INTEGER)) INSERT INTO memories SELECT ?1 || i, "
                           "CAST(?2 AS REAL) + i * CAST(?6 AS REAL), ?4, 'org.' || ?4, ?5, ?1 || i "
                           "|| '.jpg', 1, '', '' FROM n WHERE CAST(?3 AS INTEGER) > 0"),
            {prefix, QString::number(start.secondsSince1970, 'f', 3), QString::number(count), app,
             text, QString::number(apart)});
    }

    /// Waits until nothing is being asked of the library.
    void settle()
    {
        const bool isQuiet = QTest::qWaitFor([this] { return !m_listing->isLoading(); }, 20'000);
        QVERIFY2(isQuiet, "the list does not come");
        for (int turn = 0; turn < 5; ++turn)
            QCoreApplication::processEvents();
    }

    void open()
    {
        m_listing->openWorkspace();
        QCoreApplication::processEvents();
        settle();
    }

    /// As long as it takes after a filter was changed.
    void passDebounce()
    {
        QVERIFY(QTest::qWaitFor([this] { return m_rig->clock.sleepers() > 0; }));
        m_rig->clock.advance(0.18);
        for (int turn = 0; turn < 5; ++turn)
            QCoreApplication::processEvents();
        settle();
    }

    void refresh() { QCoro::waitFor(m_listing->refresh()); }

    QStringList idsOnShow() const
    {
        QStringList all;
        for (const Memory& memory : m_listing->memories())
            all.append(memory.id);
        return all;
    }
    QString ids() const { return idsOnShow().join(u' '); }
    QString selected() const { return m_listing->selectedID().value_or(QStringLiteral("none")); }
    QString error() const { return m_rig->recorder->errorMessage().value_or(QString()); }

    /// Until the library has nothing left to do. What it found has not come to the list by that.
    void drainLibrary() { m_rig->store->picture({}).waitForFinished(); }

    /// What is asked of the library fails from now on, and no more.
    void breakLibrary() { m_sql->run(QStringLiteral("ALTER TABLE memories RENAME TO hidden")); }
    void mendLibrary() { m_sql->run(QStringLiteral("ALTER TABLE hidden RENAME TO memories")); }

    static inline const QString kEditor = QStringLiteral("Editor");
    static inline const QString kText = QStringLiteral("moss");

    std::unique_ptr<RecorderRig> m_rig;
    std::unique_ptr<RawSql> m_sql;
    std::unique_ptr<Listing> m_listing;
};

} // namespace mossbank
