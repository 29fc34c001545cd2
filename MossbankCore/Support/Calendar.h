// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/Date.h"

#include <QDateTime>
#include <QLocale>
#include <QTimeZone>

#include <functional>
#include <optional>

namespace mossbank {

/// A time zone and a locale: what makes days, hours and their words out of moments.
///
/// Days and hours follow the zone's clock changes, so a day can have 23 or 25 hours, begin at one
/// o'clock, or be missing from the year altogether. The days of a zone lie end to end: every
/// moment is in exactly one of them. A day whose midnight is told twice begins with the first.
///
/// It is a value, handed to whoever needs one and never global, for a zone changes while the
/// program runs. Who needs today's asks a `CalendarSource` each time.
///
/// Threading: any thread.
class Calendar {
public:
    enum class Component { Hour, Day };

    /// An invalid `zone` counts as UTC.
    Calendar(const QTimeZone& zone, const QLocale& locale);

    /// That of the machine and the user at this moment.
    static Calendar current();

    /// The day or the hour that `date` is in. Absent for a date beyond the calendar's reach (not
    /// a number, or more than some hundred thousand years away).
    ///
    /// An hour ends at the latest where the clocks change, so an hour told twice is two hours.
    std::optional<DateInterval> dateInterval(Component component, Date date) const;

    /// The first moment of a day given by its numbers; absent where the zone has no such day.
    std::optional<Date> startOfDay(int year, int month, int day) const;

    /// The first moment after `date` at which the clocks show that time of day: where they leave
    /// it out, the moment at which they go on; where they show it twice, the first. Absent for a
    /// date beyond the calendar's reach.
    std::optional<Date> next(int hour, int minute, Date date) const;

    /// The moment so many days earlier at which the clocks show the same time: days of the
    /// calendar, not of 24 hours. Where they leave that time out, the moment at which they go on;
    /// where they show it twice, the first. Absent for a date beyond the calendar's reach.
    std::optional<Date> daysBefore(int days, Date date) const;

    /// The time of day as the locale writes it briefly ("14:05", "2:05 PM").
    QString shortTime(Date date) const;

    /// The same with its seconds ("14:05:09", "2:05:09 PM").
    QString timeWithSeconds(Date date) const;

    /// Dates as the locale writes them, each empty beyond the calendar's reach: month and day in
    /// full ("May 31", "31. Mai"), both in short ("Nov 20"), with the day of the week ("Fri, Nov
    /// 20"), all of it in full ("Friday, November 20, 2026"), a month of a year ("November 2026").
    QString monthAndDay(Date date) const;
    QString shortMonthAndDay(Date date) const;
    QString weekdayAndDay(Date date) const;
    QString fullDate(Date date) const;
    QString monthAndYear(Date date) const;

    const QLocale& locale() const { return m_locale; }

    /// `date` on this calendar's clocks, for showing. Milliseconds are all that it keeps.
    QDateTime local(Date date) const;

private:
    /// `fields`: what is to be told, as a skeleton of Unicode's date formats.
    QString worded(Date date, const char16_t* fields) const;
    DateInterval day(Date date) const;
    DateInterval hour(Date date) const;
    /// The first second at which the clocks show the day of this number, counted from
    /// 1970-01-01, or a later one.
    qint64 beginningOfDay(qint64 number) const;
    /// The first second at which the clocks show so many seconds since 1970-01-01 or more.
    qint64 firstShowing(qint64 shown) const;
    /// The number of the day that the clocks show.
    qint64 shownDay(qint64 second) const;
    qint64 offsetAt(qint64 second) const;
    /// When the clocks change next after `second`, if that is before `before`.
    std::optional<qint64> nextChange(qint64 second, qint64 before) const;

    QTimeZone m_zone;
    QLocale m_locale;
};

/// Asked for the calendar of the moment. Any thread may call it.
using CalendarSource = std::function<Calendar()>;

} // namespace mossbank
