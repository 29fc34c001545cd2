// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal> // Qt 6.4's moc cannot read <compare> where it comes first

#include <compare>

namespace mossbank {

/// A moment: seconds since 1970-01-01 00:00 UTC, with fractions, negative before then.
///
/// It knows nothing of days, zones or languages; `Calendar` does.
struct Date {
    double secondsSince1970 = 0;

    /// A moment before everything that is ever recorded: the first of January of the year 1.
    static constexpr Date distantPast() { return {-62135596800.0}; }

    friend constexpr bool operator==(Date, Date) = default;
    friend constexpr std::partial_ordering operator<=>(Date, Date) = default;
    friend constexpr Date operator+(Date date, double seconds)
    {
        return {date.secondsSince1970 + seconds};
    }
    friend constexpr Date operator-(Date date, double seconds)
    {
        return {date.secondsSince1970 - seconds};
    }
    /// The seconds from `earlier` to `later`.
    friend constexpr double operator-(Date later, Date earlier)
    {
        return later.secondsSince1970 - earlier.secondsSince1970;
    }
};

/// A stretch of time. The start belongs to it; whether the end does is the asker's business.
struct DateInterval {
    Date start;
    Date end;

    constexpr double duration() const { return end - start; }
    /// Whether `date` lies in it, the end left out.
    constexpr bool contains(Date date) const { return start <= date && date < end; }

    friend constexpr bool operator==(DateInterval, DateInterval) = default;
};

} // namespace mossbank
