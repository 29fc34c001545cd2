// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/DisplayChooser.h"

namespace mossbank {

std::optional<qsizetype> DisplayChooser::best(const QRect& window, const QList<QRect>& frames)
{
    std::optional<qsizetype> best;
    qint64 largest = 0;
    for (qsizetype index = 0; index < frames.size(); ++index) {
        const QRect overlap = frames[index].intersected(window);
        const qint64 area =
            overlap.isEmpty() ? 0 : qint64{overlap.width()} * qint64{overlap.height()};
        if (area > largest) {
            largest = area;
            best = index;
        }
    }
    return best;
}

} // namespace mossbank
