// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Ports/Clock.h"

#include <algorithm>
#include <functional>
#include <map>
#include <utility>

namespace mossbank {

/// A clock that moves when told.
class FakeClock final : public Clock {
public:
    explicit FakeClock(Date start = {1'700'000'000})
        : m_now(start)
    {
    }

    Date now() const override { return m_now; }

    /// Lets `seconds` pass. Whoever sleeps until then wakes in the order due, at the moment due,
    /// also those who went to sleep meanwhile.
    void advance(double seconds)
    {
        const double end = m_elapsed + seconds;
        while (!m_alarms.empty() && m_alarms.begin()->first.first <= end) {
            const auto due = m_alarms.begin();
            const auto ring = due->second;
            moveTo(due->first.first);
            m_alarms.erase(due);
            ring();
        }
        moveTo(end);
    }

    /// Sets the wall clock, as the user does. Sleepers do not notice.
    void setNow(Date now) { m_now = now; }

    std::size_t sleepers() const { return m_alarms.size(); }

    /// Seconds until the next sleeper is due; negative when nobody sleeps.
    double untilNextAlarm() const
    {
        return m_alarms.empty() ? -1 : m_alarms.begin()->first.first - m_elapsed;
    }

protected:
    Alarm setAlarm(double seconds, std::function<void()> ring) override
    {
        m_alarms.emplace(Key{m_elapsed + std::max(0.0, seconds), ++m_lastAlarm}, std::move(ring));
        return m_lastAlarm;
    }

    void clearAlarm(Alarm alarm) override
    {
        std::erase_if(m_alarms, [alarm](const auto& entry) { return entry.first.second == alarm; });
    }

private:
    using Key = std::pair<double, Alarm>;

    void moveTo(double elapsed)
    {
        if (elapsed <= m_elapsed)
            return; // one who woke has let more time pass than this
        m_now = m_now + (elapsed - m_elapsed);
        m_elapsed = elapsed;
    }

    Date m_now;
    double m_elapsed = 0;
    Alarm m_lastAlarm = 0;
    std::map<Key, std::function<void()>> m_alarms;
};

} // namespace mossbank
