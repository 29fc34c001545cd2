// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Support/Calendar.h"

#include <algorithm>
#include <cmath>

namespace mossbank {

namespace {

constexpr double kSecondsAnHour = 3600;
/// Beyond this the milliseconds and years of Qt's calendar come near their limits.
constexpr double kReach = 1e13;

/// Rounded down, so that a moment just before midnight stays before it.
qint64 milliseconds(Date date)
{
    return static_cast<qint64>(std::floor(date.secondsSince1970 * 1000));
}

Date fromMilliseconds(qint64 milliseconds)
{
    return {static_cast<double>(milliseconds) / 1000};
}

bool isWithinReach(Date date)
{
    return std::isfinite(date.secondsSince1970) && std::abs(date.secondsSince1970) <= kReach;
}

} // namespace

Calendar::Calendar(const QTimeZone& zone, const QLocale& locale)
    : m_zone(zone.isValid() ? zone : QTimeZone::utc())
    , m_locale(locale)
{
}

Calendar Calendar::current()
{
    return {QTimeZone::systemTimeZone(), QLocale()};
}

std::optional<DateInterval> Calendar::dateInterval(Component component, Date date) const
{
    if (!isWithinReach(date))
        return std::nullopt;
    return component == Component::Day ? day(date) : hour(date);
}

std::optional<Date> Calendar::startOfDay(int year, int month, int day) const
{
    const QDate date(year, month, day);
    if (!date.isValid())
        return std::nullopt;
    const QDateTime start = date.startOfDay(m_zone);
    // A zone that crosses the date line leaves out a whole day; Qt then answers with another.
    if (!start.isValid() || start.date() != date)
        return std::nullopt;
    return fromMilliseconds(start.toMSecsSinceEpoch());
}

QString Calendar::shortTime(Date date) const
{
    return m_locale.toString(local(date).time(), QLocale::ShortFormat);
}

QDateTime Calendar::local(Date date) const
{
    if (!isWithinReach(date))
        return {};
    return QDateTime::fromMSecsSinceEpoch(milliseconds(date), m_zone);
}

std::optional<DateInterval> Calendar::day(Date date) const
{
    QDate name = local(date).date();
    // Where clocks go back over midnight, the evening that is told twice is split by the first
    // midnight: moments after it are named by the old day and lie in the new one.
    for (int attempt = 0; attempt < 3; ++attempt) {
        const auto start = startOfDayAtOrAfter(name);
        const auto end = startOfDayAtOrAfter(name.addDays(1));
        if (!start || !end)
            return std::nullopt;
        if (date < *start)
            name = name.addDays(-1);
        else if (date >= *end)
            name = name.addDays(1);
        else
            return DateInterval{*start, *end};
    }
    return std::nullopt;
}

std::optional<Date> Calendar::startOfDayAtOrAfter(QDate day) const
{
    constexpr int kLongestGap = 2; // a crossing of the date line leaves out one
    for (int later = 0; later <= kLongestGap; ++later) {
        const QDate candidate = day.addDays(later);
        if (const auto start = startOfDay(candidate.year(), candidate.month(), candidate.day()))
            return start;
    }
    return std::nullopt;
}

std::optional<DateInterval> Calendar::hour(Date date) const
{
    const QDateTime here = local(date);
    const double localSeconds = date.secondsSince1970 + here.offsetFromUtc();
    const double intoHour =
        localSeconds - std::floor(localSeconds / kSecondsAnHour) * kSecondsAnHour;
    DateInterval interval{date - intoHour, date - intoHour + kSecondsAnHour};

    const auto changesClocks = [](const QTimeZone::OffsetData& transition) {
        return transition.atUtc.isValid();
    };
    // The transition at `date` itself has happened: "previous" is asked from just after it.
    const auto before = m_zone.previousTransition(here.addMSecs(1));
    if (changesClocks(before))
        interval.start =
            std::max(interval.start, fromMilliseconds(before.atUtc.toMSecsSinceEpoch()));
    const auto after = m_zone.nextTransition(here);
    if (changesClocks(after))
        interval.end = std::min(interval.end, fromMilliseconds(after.atUtc.toMSecsSinceEpoch()));
    return interval;
}

} // namespace mossbank
