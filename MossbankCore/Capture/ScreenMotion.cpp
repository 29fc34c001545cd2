// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/ScreenMotion.h"

#include <algorithm>

namespace mossbank {

void ScreenMotion::observe(const std::optional<Fingerprint>& earlier,
                           const std::optional<Fingerprint>& later, std::uint8_t tolerance)
{
    if (!ScreenFingerprint::areComparable(earlier, later))
        return;
    if (sightings.size() != later->size())
        sightings.assign(later->size(), 0);

    const auto moved = [&](std::size_t cell) {
        return ScreenFingerprint::hasMoved((*earlier)[cell], (*later)[cell], tolerance);
    };
    std::int64_t count = 0;
    for (std::size_t cell = 0; cell < later->size(); ++cell) {
        if (moved(cell) && ++count > kFlickerCeiling)
            return;
    }
    if (count == 0)
        return;
    for (std::size_t cell = 0; cell < later->size(); ++cell) {
        std::uint8_t& seen = sightings[cell];
        if (moved(cell))
            seen = std::min<std::uint8_t>(seen, kSettledAfter - 1) + 1;
        else if (seen > 0)
            --seen;
    }
}

std::int64_t ScreenMotion::novel(const std::optional<Fingerprint>& since,
                                 const std::optional<Fingerprint>& to, std::uint8_t tolerance) const
{
    if (!ScreenFingerprint::areComparable(since, to))
        return ScreenFingerprint::kNotComparable;
    std::int64_t count = 0;
    for (std::size_t cell = 0; cell < to->size(); ++cell) {
        if (ScreenFingerprint::hasMoved((*since)[cell], (*to)[cell], tolerance) &&
            !hasSettled(cell))
            ++count;
    }
    return count;
}

std::int64_t ScreenMotion::restless() const
{
    return std::count_if(sightings.begin(), sightings.end(),
                         [](std::uint8_t seen) { return seen >= kSettledAfter; });
}

bool ScreenMotion::hasSettled(std::size_t cell) const
{
    return cell < sightings.size() && sightings[cell] >= kSettledAfter;
}

} // namespace mossbank
