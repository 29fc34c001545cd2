// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QList>
#include <QRect>

#include <vector>

namespace mossbank {

/// Part of a line of text that stands on one background: the words on a panel, those on a badge.
struct LinePart {
    QRect area;
    QRgb background = 0;

    friend bool operator==(const LinePart&, const LinePart&) = default;
};

/// The parts of the line in `area` of a picture of 32 bits a pixel, from left to right.
QList<LinePart> partsOf(const QImage& picture, const QRect& area);

/// The background behind a part for each of the columns from `left` to `right`, the last left out.
/// It follows a gradient.
std::vector<QRgb> backgroundsOf(const QImage& picture, const LinePart& part, int left, int right);

} // namespace mossbank
