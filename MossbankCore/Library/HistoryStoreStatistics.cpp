// SPDX-License-Identifier: Apache-2.0
//
// What a library holds, from the summary that the triggers keep and not from its rows: asked often,
// and of libraries of any size.
#include "MossbankCore/Library/DayCounter.h"
#include "MossbankCore/Library/HistoryStore.h"

#include <QSet>

namespace mossbank {

using namespace Qt::StringLiterals;

QFuture<LibraryStats> HistoryStore::stats()
{
    return search([this] { return statsNow(); });
}

LibraryStats HistoryStore::statsNow()
{
    constexpr double kSlotSeconds = 900;
    Statement rows =
        m_db.statement(u"SELECT slot, app_name, count, bytes FROM memory_slots ORDER BY slot"_s);
    LibraryStats stats;
    DayCounter counter(m_calendar());
    QSet<QString> apps;
    while (rows.step()) {
        int column = 0;
        const auto slot = static_cast<double>(rows.integer(column++));
        apps.insert(rows.text(column++));
        const qint64 count = rows.integer(column++);
        counter.add({slot * kSlotSeconds}, count);
        stats.count += count;
        stats.bytes += rows.integer(column++);
    }
    stats.days = counter.days();
    stats.apps = QStringList(apps.cbegin(), apps.cend());
    stats.apps.sort();
    stats.bundles = bundles();
    return stats;
}

QHash<QString, QString> HistoryStore::bundles()
{
    // From one name to the next, and for each the greatest of its identities, which is a real one
    // rather than none: a look or two at memories_app for each name, where grouping by name would
    // walk all of it.
    Statement rows = m_db.statement(
        u"WITH RECURSIVE names(name) AS (\n"
        "  SELECT min(app_name) FROM memories\n"
        "  UNION ALL\n"
        "  SELECT (SELECT min(app_name) FROM memories WHERE app_name > name) FROM names\n"
        "    WHERE name IS NOT NULL)\n"
        "SELECT name, (SELECT max(bundle_id) FROM memories WHERE app_name = name) FROM names\n"
        "  WHERE name IS NOT NULL"_s);
    QHash<QString, QString> bundles;
    while (rows.step())
        bundles.insert(rows.text(0), rows.text(1));
    return bundles;
}

} // namespace mossbank
