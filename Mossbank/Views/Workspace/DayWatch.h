// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/Calendar.h"
#include "MossbankCore/Support/Job.h"

#include <QObject>

#include <optional>

namespace mossbank {

class Clock;

/// Tells when another day has begun, also where the clock was set or the computer has slept
/// meanwhile.
///
/// Threading: the main thread.
class DayWatch : public QObject {
    Q_OBJECT

public:
    /// The clock outlives it.
    DayWatch(Clock& clock, CalendarSource calendar, QObject* parent = nullptr);

Q_SIGNALS:
    void dayHasChanged();

private:
    QCoro::Task<> watch(Cancellation cancellation);
    std::optional<Date> today() const;

    Clock& m_clock;
    CalendarSource m_calendar;
    std::optional<Date> m_today;
    Job m_watching;
};

} // namespace mossbank
