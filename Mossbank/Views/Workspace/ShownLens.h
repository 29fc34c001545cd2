// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/Listing.h"

#include <algorithm>
#include <array>

namespace mossbank {

/// The lenses that there is a view for.
inline constexpr std::array kShownLenses = {Listing::Lens::Moments};

/// The one that the window shows: one that was chosen where there was a view for it is shown by the
/// first.
inline Listing::Lens shownLens(const Listing& listing)
{
    const auto* const chosen = std::ranges::find(kShownLenses, listing.lens());
    return chosen == kShownLenses.end() ? kShownLenses.front() : *chosen;
}

} // namespace mossbank
