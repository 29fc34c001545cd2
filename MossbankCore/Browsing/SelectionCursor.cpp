// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Browsing/SelectionCursor.h"

#include <algorithm>

namespace mossbank {

std::optional<qsizetype> SelectionCursor::move(std::optional<qsizetype> from, qsizetype by,
                                               qsizetype count)
{
    if (count <= 0)
        return std::nullopt;
    if (!from || *from >= count)
        return 0;
    const qsizetype last = count - 1;
    // Bounded first: whoever says "to the end" may say it with the largest number there is.
    const qsizetype start = std::max<qsizetype>(*from, 0);
    return start + std::clamp(by, -start, last - start);
}

} // namespace mossbank
