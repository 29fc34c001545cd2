// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/DayCounter.h"

#include <utility>

namespace mossbank {

DayCounter::DayCounter(Calendar calendar)
    : m_calendar(std::move(calendar))
{
}

void DayCounter::add(Date date, qsizetype count)
{
    if (!m_current.contains(date)) {
        m_current = m_calendar.dateInterval(Calendar::Component::Day, date)
                        .value_or(DateInterval{date, date});
    }
    m_days[m_current.start] += count;
}

} // namespace mossbank
