// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/ScreenMotion.h"

#include "MossbankCore/Capture/CellComparison.h"

#include <algorithm>

namespace mossbank {

void ScreenMotion::observe(const std::optional<Fingerprint>& earlier,
                           const std::optional<Fingerprint>& later, std::uint8_t tolerance)
{
    if (!ScreenFingerprint::areComparable(earlier, later))
        return;
    if (sightings.size() != later->size())
        sightings.assign(later->size(), 0);

    const std::uint8_t* const before = earlier->data();
    const std::uint8_t* const after = later->data();
    const auto moved = [=](std::size_t cell) {
        return cellMoved(before[cell], after[cell], tolerance);
    };
    const std::int64_t count = countCells(0, later->size(), moved, kFlickerCeiling);
    if (count == 0 || count > kFlickerCeiling)
        return;
    std::uint8_t* const seen = sightings.data();
    for (std::size_t cell = 0; cell < later->size(); ++cell) {
        const std::uint8_t risen = std::min<std::uint8_t>(seen[cell], kSettledAfter - 1) + 1;
        const std::uint8_t sunk = std::max<std::uint8_t>(seen[cell], 1) - 1;
        seen[cell] = moved(cell) ? risen : sunk;
    }
}

std::int64_t ScreenMotion::novel(const std::optional<Fingerprint>& since,
                                 const std::optional<Fingerprint>& to, std::uint8_t tolerance) const
{
    if (!ScreenFingerprint::areComparable(since, to))
        return ScreenFingerprint::kNotComparable;
    const std::uint8_t* const before = since->data();
    const std::uint8_t* const after = to->data();
    const std::uint8_t* const seen = sightings.data();
    const auto moved = [=](std::size_t cell) {
        return cellMoved(before[cell], after[cell], tolerance);
    };
    const auto movedAnew = [=](std::size_t cell) {
        // Without a branch, so that many cells are looked at in one go.
        return static_cast<bool>(static_cast<int>(moved(cell)) &
                                 static_cast<int>(seen[cell] < kSettledAfter));
    };
    // A cell that was never watched has not settled.
    const std::size_t watched = std::min(sightings.size(), to->size());
    return countCells(0, watched, movedAnew) + countCells(watched, to->size(), moved);
}

std::int64_t ScreenMotion::restless() const
{
    return std::count_if(sightings.begin(), sightings.end(),
                         [](std::uint8_t seen) { return seen >= kSettledAfter; });
}

} // namespace mossbank
