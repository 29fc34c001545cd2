// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Browsing/DayTimeline.h"

#include <QDateTime>

#include <algorithm>
#include <array>
#include <limits>

namespace mossbank {

namespace {

constexpr double kHour = 3600;
constexpr double kDay = 86'400;

using Component = Calendar::Component;

DateInterval wholeDay(Date day, const Calendar& calendar)
{
    return calendar.dateInterval(Component::Day, day).value_or(DateInterval{day, day + kDay});
}

/// The whole hours around those of the moments that are within `whole`. Absent where none is.
std::optional<DateInterval> hoursAround(std::span<const Date> timestamps, DateInterval whole,
                                        const Calendar& calendar)
{
    std::optional<DateInterval> found;
    for (const Date moment : timestamps) {
        if (!whole.contains(moment))
            continue;
        if (!found)
            found = DateInterval{moment, moment};
        found->start = std::min(found->start, moment);
        found->end = std::max(found->end, moment);
    }
    if (!found)
        return std::nullopt;
    const auto first = calendar.dateInterval(Component::Hour, found->start);
    const auto last = calendar.dateInterval(Component::Hour, found->end);
    if (!first || !last)
        return std::nullopt;
    return DateInterval{first->start, last->end};
}

/// Hour by hour, later ones first: a morning's work shows with the hours after it.
DateInterval widened(DateInterval hours, DateInterval whole, double minimumSpan)
{
    while (hours.duration() < minimumSpan) {
        if (hours.end < whole.end)
            hours.end = std::min(hours.end + kHour, whole.end);
        else if (hours.start > whole.start)
            hours.start = std::max(hours.start - kHour, whole.start);
        else
            break;
    }
    return hours;
}

} // namespace

DayTimeline::DayTimeline(Date day, std::span<const Date> timestamps, const Calendar& calendar,
                         double minimumSpan)
{
    const DateInterval whole = wholeDay(day, calendar);
    m_bounds = whole;
    if (const auto hours = hoursAround(timestamps, whole, calendar)) {
        const DateInterval shown = widened(*hours, whole, minimumSpan);
        m_bounds = {std::max(shown.start, whole.start), std::min(shown.end, whole.end)};
    }
    m_window = m_bounds;
}

DayTimeline DayTimeline::zoomed(double scale, std::optional<Date> around) const
{
    const double whole = m_bounds.duration();
    const double wanted = scale >= 1 ? whole / scale : whole;
    const double span = std::min(std::max(wanted, kClosestSpan), whole);
    if (span >= whole)
        return {m_bounds, m_bounds};
    const Date centre =
        around ? std::clamp(*around, m_bounds.start, m_bounds.end) : m_bounds.start + whole / 2;
    const Date start = std::min(std::max(centre - span / 2, m_bounds.start), m_bounds.end - span);
    return {{start, start + span}, m_bounds};
}

DayTimeline DayTimeline::atLatest() const
{
    const double span = m_window.duration();
    if (span >= m_bounds.duration())
        return *this;
    return {{m_bounds.end - span, m_bounds.end}, m_bounds};
}

double DayTimeline::deepestScale(double minimum) const
{
    const double whole = m_bounds.duration();
    return std::max(minimum > 1 ? whole / minimum : whole, 1.0);
}

double DayTimeline::fraction(Date date) const
{
    const double whole = m_window.duration();
    return whole > 0 ? std::clamp((date - m_window.start) / whole, 0.0, 1.0) : 0.0;
}

Date DayTimeline::date(double fraction) const
{
    return m_window.start + m_window.duration() * std::clamp(fraction, 0.0, 1.0);
}

std::vector<Date> DayTimeline::hourTicks(double width, double minimumSpacing,
                                         const Calendar& calendar) const
{
    const double whole = m_window.duration();
    if (!(width > 0) || !(whole > 0))
        return {};
    constexpr std::array<int, 6> kSteps = {1, 2, 3, 4, 6, 12};
    const double hourWidth = width * kHour / whole;
    const auto* const found = std::ranges::find_if(
        kSteps, [&](int hours) { return minimumSpacing <= hourWidth * hours; });
    const int step = found == kSteps.end() ? kSteps.back() : *found;

    std::vector<Date> ticks;
    auto hour = calendar.dateInterval(Component::Hour, m_window.start);
    while (hour && hour->start <= m_window.end) {
        const QTime shown = calendar.local(hour->start).time();
        // Where the clocks change by half an hour, an hour can begin beside the round one.
        const bool isRound = shown.minute() == 0 && shown.second() == 0;
        if (hour->start >= m_window.start && isRound && shown.hour() % step == 0)
            ticks.push_back(hour->start);
        const Date next = hour->end;
        if (next <= hour->start)
            break;
        hour = calendar.dateInterval(Component::Hour, next);
    }
    return ticks;
}

std::vector<DayTimeline::IconSlot> DayTimeline::iconSlots(std::span<const Entry> entries,
                                                          double width, double size, double spacing,
                                                          double gap) const
{
    std::vector<Entry> sorted;
    if (!std::ranges::is_sorted(entries, {}, &Entry::date)) {
        sorted.assign(entries.begin(), entries.end());
        std::ranges::stable_sort(sorted, {}, &Entry::date);
        entries = sorted;
    }
    const double rightmost = std::max(width - size, 0.0);
    double free = -std::numeric_limits<double>::infinity();
    const Entry* previous = nullptr;
    std::vector<IconSlot> slots;
    for (const Entry& entry : entries) {
        const bool goesOn =
            previous && previous->app == entry.app && entry.date - previous->date <= gap;
        previous = &entry;
        if (goesOn)
            continue;
        const double x = std::min(std::max(fraction(entry.date) * width, 0.0), rightmost);
        if (free > x)
            continue;
        slots.push_back({entry.app, x});
        free = x + size + spacing;
    }
    return slots;
}

} // namespace mossbank
