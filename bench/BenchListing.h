// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace mossbank {

class Bounds;

/// What it takes to list a day of 20,000 screenshots and to search, from a library of so many: the
/// time, the longest that the main thread is busy with it in one piece, and the memory. The
/// library is made first, which takes minutes for a large one, or found in the folder `kept`, where
/// an earlier run left it.
///
/// Throws a Failure where the list is not the one that was asked for.
void measureListing(int rows, const QString& kept, Bounds& bounds);

} // namespace mossbank
