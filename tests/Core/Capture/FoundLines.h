// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Capture/TextLineFinder.h"

#include <QImage>
#include <QList>
#include <QRect>

#include <algorithm>
#include <utility>

namespace mossbank {

/// The lines found, from the top and from the left.
inline QList<QRect> found(const QImage& picture)
{
    QList<QRect> lines = TextLineFinder::find(picture);
    std::ranges::sort(lines, [](const QRect& one, const QRect& other) {
        return std::pair(one.top(), one.left()) < std::pair(other.top(), other.left());
    });
    return lines;
}

/// Whether a line was found there: all of it and next to nothing else.
inline bool isAround(const QRect& line, const QRect& letters)
{
    constexpr int kMost = 2;
    return line.contains(letters) && letters.adjusted(-kMost, -kMost, kMost, kMost).contains(line);
}

} // namespace mossbank
