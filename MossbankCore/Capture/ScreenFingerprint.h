// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

class QImage;

namespace mossbank {

/// A picture squeezed into a small square of gray cells, row after row. It lives in memory only.
using Fingerprint = std::vector<std::uint8_t>;

/// How pictures of the screen are compared: by small fingerprints, never pixel by pixel.
///
/// A cell has moved when its two values differ by more than the tolerance. Two fingerprints are
/// comparable when both are there, of one size, and not empty.
///
/// Threading: any thread.
class ScreenFingerprint {
public:
    ScreenFingerprint() = delete;

    /// What a comparison gives that cannot be made.
    static constexpr std::int64_t kNotComparable = std::numeric_limits<std::int64_t>::max();

    /// The fingerprint of `size` by `size` cells, the shape of the screen given up. Absent for a
    /// size below 1 and for a picture without pixels.
    static std::optional<Fingerprint> make(const QImage& image, int size);

    /// The number of cells that moved, or kNotComparable.
    static std::int64_t moved(const std::optional<Fingerprint>& from,
                              const std::optional<Fingerprint>& to, std::uint8_t tolerance);

    /// Whether at least one cell moved. True when they cannot be compared.
    static bool changed(const std::optional<Fingerprint>& from,
                        const std::optional<Fingerprint>& to, std::uint8_t tolerance);

    /// Whether two fingerprints can be compared.
    static bool areComparable(const std::optional<Fingerprint>& from,
                              const std::optional<Fingerprint>& to);
};

} // namespace mossbank
