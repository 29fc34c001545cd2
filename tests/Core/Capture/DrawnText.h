// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QColor>
#include <QImage>
#include <QList>
#include <QRect>

namespace mossbank {

inline constexpr QRgb kWhite = qRgb(255, 255, 255);
inline constexpr QRgb kBlack = qRgb(0, 0, 0);

inline QImage plain(const QSize& size, QRgb colour = kWhite)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(colour);
    return picture;
}

inline void fill(QImage& picture, const QRect& area, QRgb colour)
{
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            picture.setPixel(x, y, colour);
}

/// Draws words of so many letters H each, from `at` to the right, and tells what they cover. The
/// letters are to the pixel, whatever fonts the machine has.
inline QRect write(QImage& picture, const QPoint& at, const QList<int>& words, QRgb ink = kBlack,
                   int height = 12)
{
    const int stem = std::max(1, height / 6);
    const int width = 4 * stem;
    const int gap = std::max(1, height / 4);
    const int wordGap = height * 2 / 3;
    int x = at.x();
    int end = x;
    for (const int letters : words) {
        for (int letter = 0; letter < letters; ++letter) {
            fill(picture, {x, at.y(), stem, height}, ink);
            fill(picture, {x + width - stem, at.y(), stem, height}, ink);
            fill(picture, {x, at.y() + height / 2, width, stem}, ink);
            end = x + width;
            x = end + gap;
        }
        x = end + wordGap;
    }
    return {at.x(), at.y(), end - at.x(), height};
}

} // namespace mossbank
