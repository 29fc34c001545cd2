// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace mossbank {

/// Whether a cell of these two values has moved. Kept to bytes all through, so that a compiler
/// compares sixteen cells or more in one go.
constexpr bool cellMoved(std::uint8_t from, std::uint8_t to, std::uint8_t tolerance)
{
    const auto difference = static_cast<std::uint8_t>(std::max(from, to) - std::min(from, to));
    return difference > tolerance;
}

/// The number of cells from `first` up to `end` for which `isCounted(cell)` holds. Once the count
/// is above `enough`, it may return without looking at the rest.
template <typename IsCounted>
std::int64_t countCells(std::size_t first, std::size_t end, IsCounted isCounted,
                        std::int64_t enough = INT64_MAX)
{
    // So many that their number fits into a byte: a compiler then counts them side by side.
    constexpr std::size_t kBlock = 128;
    std::int64_t count = 0;
    for (; first < end && end - first >= kBlock && count <= enough; first += kBlock) {
        std::uint8_t inBlock = 0;
        for (std::size_t cell = 0; cell < kBlock; ++cell)
            inBlock = static_cast<std::uint8_t>(inBlock + (isCounted(first + cell) ? 1 : 0));
        count += inBlock;
    }
    for (; first < end && count <= enough; ++first)
        count += isCounted(first) ? 1 : 0;
    return count;
}

} // namespace mossbank
