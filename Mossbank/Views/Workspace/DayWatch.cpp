// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Workspace/DayWatch.h"

#include "MossbankCore/Ports/Clock.h"

#include <utility>

namespace mossbank {

DayWatch::DayWatch(Clock& clock, CalendarSource calendar, QObject* parent)
    : QObject(parent)
    , m_clock(clock)
    , m_calendar(std::move(calendar))
    , m_today(today())
    , m_watching(Job::start(&DayWatch::watch, this))
{
}

QCoro::Task<> DayWatch::watch(Cancellation cancellation)
{
    // Sleeping until midnight would wake late where the computer has slept too.
    constexpr double kBetweenLooks = 20;
    while (co_await m_clock.sleep(kBetweenLooks, cancellation)) {
        const auto day = today();
        if (std::exchange(m_today, day) != day)
            Q_EMIT dayHasChanged();
        // Whoever was told may have let go of this.
        if (cancellation.isRequested())
            co_return;
    }
}

std::optional<Date> DayWatch::today() const
{
    const auto day = m_calendar().dateInterval(Calendar::Component::Day, m_clock.now());
    return day ? std::optional(day->start) : std::nullopt;
}

} // namespace mossbank
