// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/PauseLength.h"

#include "MossbankCore/Support/Calendar.h"

#include <algorithm>

namespace mossbank {

const char* PauseLength::label() const
{
    switch (m_case) {
    case FifteenMinutes:
        return "15 minutes";
    case OneHour:
        return "1 hour";
    case UntilMorning:
        break;
    }
    return "until morning";
}

Date PauseLength::deadline(Date from, const Calendar& calendar) const
{
    constexpr double kQuarter = 900;
    constexpr double kHour = 3600;
    constexpr double kNight = 28800;
    constexpr double kShortest = 60;
    constexpr int kMorning = 8;

    Date end = from;
    switch (m_case) {
    case FifteenMinutes:
        end = from + kQuarter;
        break;
    case OneHour:
        end = from + kHour;
        break;
    case UntilMorning:
        end = calendar.next(kMorning, 0, from).value_or(from + kNight);
        break;
    }
    return std::max(end, from + kShortest);
}

std::optional<double> PauseTick::next(Date until, Date from)
{
    const double left = until - from;
    return left > 0 ? std::optional(std::min(left, kMaximum)) : std::nullopt;
}

} // namespace mossbank
