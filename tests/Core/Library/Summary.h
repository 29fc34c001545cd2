// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/Core/Library/RawSql.h"

#include <QMap>

#include <cmath>
#include <utility>

namespace mossbank {

/// The summary that the triggers keep, a row a line.
inline QStringList summary(RawSql& sql)
{
    return sql.rows(QStringLiteral("SELECT * FROM memory_slots ORDER BY slot, app_name"));
}

/// The same counted anew from the rows.
inline QStringList recount(RawSql& sql)
{
    constexpr double kSlot = 900;
    QMap<std::pair<qint64, QString>, std::pair<int, qint64>> counts;
    for (const QString& row :
         sql.rows(QStringLiteral("SELECT timestamp, bytes, app_name FROM memories"))) {
        const auto slot = std::floor(row.section(u'|', 0, 0).toDouble() / kSlot);
        auto& [count, bytes] = counts[{static_cast<qint64>(slot), row.section(u'|', 2)}];
        ++count;
        bytes += row.section(u'|', 1, 1).toLongLong();
    }
    QStringList lines;
    for (auto entry = counts.cbegin(); entry != counts.cend(); ++entry)
        lines.append(QStringLiteral("%1|%2|%3|%4")
                         .arg(entry.key().first)
                         .arg(entry.key().second)
                         .arg(entry->first)
                         .arg(entry->second));
    return lines;
}

} // namespace mossbank
