// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <iterator>

namespace mossbank {

/// Of a collection whose first part does not have a property and whose rest has it: the index of
/// the first that does, or the collection's size. Asks about few of them. What `hasProperty` throws
/// is passed on.
template <typename Collection, typename Predicate>
auto partitioningIndex(const Collection& collection, Predicate hasProperty)
{
    const auto found =
        std::partition_point(std::begin(collection), std::end(collection),
                             [&](const auto& element) { return !hasProperty(element); });
    return found - std::begin(collection);
}

} // namespace mossbank
