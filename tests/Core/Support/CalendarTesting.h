// SPDX-License-Identifier: Apache-2.0
//
// Moments as texts and back, for the tests of the calendar.
#pragma once

#include "MossbankCore/Support/Calendar.h"

#include <QDateTime>
#include <QString>
#include <QTimeZone>

#include <cmath>
#include <optional>

namespace mossbank {

/// "2024-03-30T23:00:00Z", with fractions where given.
inline Date moment(const QString& iso)
{
    const QDateTime parsed = QDateTime::fromString(iso, Qt::ISODateWithMs);
    Q_ASSERT(parsed.isValid());
    return {static_cast<double>(parsed.toMSecsSinceEpoch()) / 1000};
}

inline Calendar calendarOf(const QString& zone)
{
    return {QTimeZone(zone.toLatin1()), QLocale::c()};
}

inline QString written(Date date)
{
    return QDateTime::fromMSecsSinceEpoch(qint64(std::llround(date.secondsSince1970 * 1000)),
                                          Qt::UTC)
        .toString(Qt::ISODateWithMs);
}

inline QString written(const std::optional<DateInterval>& interval)
{
    return interval ? written(interval->start) + QStringLiteral(" to ") + written(interval->end)
                    : QStringLiteral("none");
}

} // namespace mossbank
