// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Capture/ScreenFingerprint.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace mossbank {

/// Learns which cells of the screen keep moving on their own, a caret, a clock, a spinner, so that
/// they can be left out of account.
struct ScreenMotion {
    /// Sightings at which a cell counts as moving on its own; no cell counts beyond it.
    static constexpr std::uint8_t kSettledAfter = 3;
    /// The most cells that may change between two pictures for the change to be such a motion.
    static constexpr std::int64_t kFlickerCeiling = 12;

    /// For each cell, how often it was lately seen to move on its own. Empty until the first
    /// observation that could be made.
    std::vector<std::uint8_t> sightings;

    /// Takes in two pictures looked at one after the other. A small change teaches: its cells
    /// gain a sighting and all others lose one. A larger change, or none, teaches nothing.
    void observe(const std::optional<Fingerprint>& earlier, const std::optional<Fingerprint>& later,
                 std::uint8_t tolerance);

    /// The number of cells that moved and are not known to move on their own;
    /// ScreenFingerprint::kNotComparable where there is nothing to compare.
    std::int64_t novel(const std::optional<Fingerprint>& since,
                       const std::optional<Fingerprint>& to, std::uint8_t tolerance) const;

    /// The number of cells known to move on their own.
    std::int64_t restless() const;

    void forget() { sightings.clear(); }

    friend bool operator==(const ScreenMotion&, const ScreenMotion&) = default;
};

} // namespace mossbank
