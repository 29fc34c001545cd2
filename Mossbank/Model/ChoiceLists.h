// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>

namespace mossbank {

/// What the user is given to choose from. A stored choice need not be among it: another version may
/// have had other lists.
class ChoiceLists {
public:
    ChoiceLists() = delete;

    /// Seconds.
    static constexpr std::array<double, 13> kIntervals = {1,  2,  3,  5,   10,  15, 20,
                                                          30, 45, 60, 120, 300, 600};
    /// Days. 0: for ever.
    static constexpr std::array<int, 10> kRetentionDays = {1, 3, 7, 14, 30, 60, 90, 180, 365, 0};
    static constexpr double kLeastImageQuality = 0.4;
    static constexpr double kMostImageQuality = 0.95;
    /// Minutes.
    static constexpr std::array<double, 5> kUnchangedRefreshMinutes = {5, 10, 15, 30, 60};
    static constexpr std::array<const char16_t*, 3> kChangeModes = {u"any", u"flicker", u"obvious"};
    static constexpr std::array<const char16_t*, 3> kAppearanceModes = {u"system", u"light",
                                                                        u"dark"};
};

} // namespace mossbank
