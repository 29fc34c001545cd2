// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace mossbank {

/// The words that show a stored choice to the user.
///
/// Threading: the main thread.
class ChoiceLabels {
public:
    ChoiceLabels() = delete;

    /// "30 seconds", "1 minute". Seconds are rounded first, minutes are whole ones.
    static QString intervalLabel(double seconds);
    /// The same within a sentence: "every 30 seconds".
    static QString everyIntervalLabel(double seconds);
    /// "15 minutes", "1 hour".
    static QString refreshLabel(double minutes);
    /// "30 days", "Forever".
    static QString retentionLabel(int days);
    /// What counts as a change.
    static QString changeLabel(const QString& mode);
    /// Light, dark, or as the desktop has it.
    static QString appearanceLabel(const QString& mode);

    /// Where among `choices` the one nearest to `value` stands, the earlier of two equally near.
    /// 0 where there is nothing to choose.
    template <typename Number, typename Choices>
    static double step(Number value, const Choices& choices)
    {
        if (std::size(choices) < 2)
            return 0;
        const auto distance = [&](Number choice) {
            return std::abs(static_cast<double>(choice) - static_cast<double>(value));
        };
        const auto nearest = std::ranges::min_element(choices, {}, distance);
        return static_cast<double>(nearest - choices.begin());
    }
};

} // namespace mossbank
