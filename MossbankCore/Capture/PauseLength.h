// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/Date.h"

#include <QString>

#include <array>
#include <optional>

namespace mossbank {

class Calendar;

/// For how long recording can be put aside.
///
/// Threading: any thread.
class PauseLength {
public:
    enum Case { FifteenMinutes, OneHour, UntilMorning };

    static constexpr std::array kAllCases = {FifteenMinutes, OneHour, UntilMorning};

    // A length is as good as its case.
    constexpr PauseLength(Case length) // NOLINT(google-explicit-constructor)
        : m_case(length)
    {
    }

    /// In English; the key to its words in other languages.
    const char* label() const;

    /// When a pause ends that begins at `from`. The morning is the next eight o'clock on the clocks
    /// of `calendar`. No pause is shorter than a minute.
    Date deadline(Date from, const Calendar& calendar) const;

    friend constexpr bool operator==(PauseLength, PauseLength) = default;

private:
    Case m_case;
};

/// A pause is measured against the wall clock at least this often, not slept through in one sleep:
/// the machine may sleep meanwhile, and the clock be set.
class PauseTick {
public:
    PauseTick() = delete;

    static constexpr double kMaximum = 60.0;

    /// Seconds until the clock is to be looked at again. Absent when the pause is over.
    static std::optional<double> next(Date until, Date from);
};

} // namespace mossbank
