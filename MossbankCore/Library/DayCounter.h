// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/Calendar.h"

#include <QMap>

namespace mossbank {

/// Counts by day what comes in the order of time, so that the calendar is asked once a day.
///
/// Threading: one thread at a time.
class DayCounter {
public:
    explicit DayCounter(Calendar calendar);

    void add(Date date, qsizetype count = 1);

    /// By the first moment of each day. A date beyond the calendar's reach is a day by itself.
    const QMap<Date, qsizetype>& days() const { return m_days; }

private:
    Calendar m_calendar;
    DateInterval m_current = {Date::distantPast(), Date::distantPast()};
    QMap<Date, qsizetype> m_days;
};

} // namespace mossbank
