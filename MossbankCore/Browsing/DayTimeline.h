// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/Calendar.h"
#include "MossbankCore/Support/Date.h"

#include <QString>

#include <optional>
#include <span>
#include <vector>

namespace mossbank {

/// The geometry of a strip that shows a day: which stretch of it is on show, how far it can be
/// enlarged, where a moment stands and which moment a place is, which hours have their labels and
/// which applications their icons. Nothing is drawn here.
///
/// Threading: a value; any thread.
class DayTimeline {
public:
    /// The narrowest stretch on show, in seconds.
    static constexpr double kClosestSpan = 120;

    /// Something that happened in an application.
    struct Entry {
        Date date;
        QString app;
    };

    struct IconSlot {
        QString app;
        /// Its left edge, in the units of the strip's width.
        double x = 0;
        friend bool operator==(const IconSlot&, const IconSlot&) = default;
    };

    /// All of what there is to show of the day that `day` is in: whole hours around `timestamps`,
    /// at least `minimumSpan` seconds of them, the whole day where it has none.
    DayTimeline(Date day, std::span<const Date> timestamps, const Calendar& calendar,
                double minimumSpan);
    DayTimeline(DateInterval window, DateInterval bounds)
        : m_window(window)
        , m_bounds(bounds)
    {
    }

    /// The part of the day on show.
    DateInterval window() const { return m_window; }
    /// The part of it that has anything to show. The window lies in it.
    DateInterval bounds() const { return m_bounds; }

    /// With the bounds enlarged so many times and `around` in the middle, as far as the bounds
    /// allow; without it, the middle of the bounds.
    DayTimeline zoomed(double scale, std::optional<Date> around) const;
    /// The same stretch at the end of the bounds.
    DayTimeline atLatest() const;
    /// How many times the bounds can be enlarged before the window is below `minimum` seconds.
    double deepestScale(double minimum) const;

    /// Where in the window a moment stands, from 0 to 1; before it 0, after it 1.
    double fraction(Date date) const;
    Date date(double fraction) const;

    /// The hours that are labelled on a strip of that width: round ones of the clock, so far apart
    /// that each label has `minimumSpacing`.
    std::vector<Date> hourTicks(double width, double minimumSpacing,
                                const Calendar& calendar) const;

    /// Which entries have an icon of that size, `spacing` apart at least. A stretch in the same
    /// application has one, and so has what comes after more than `gap` seconds. Where two would
    /// overlap, the earlier is shown.
    std::vector<IconSlot> iconSlots(std::span<const Entry> entries, double width, double size,
                                    double spacing, double gap) const;

    friend bool operator==(const DayTimeline&, const DayTimeline&) = default;

private:
    DateInterval m_window;
    DateInterval m_bounds;
};

} // namespace mossbank
