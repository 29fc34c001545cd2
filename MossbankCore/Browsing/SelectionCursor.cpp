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
    if (*from < 0)
        return std::clamp<qsizetype>(*from + std::max<qsizetype>(by, 0), 0, last);
    // Bounded first: whoever says "to the end" may say it with the largest number there is.
    return *from + std::clamp(by, -*from, last - *from);
}

} // namespace mossbank
