// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Capture/LineImages.h"
#include "tests/Core/Capture/DrawnText.h"

#include <algorithm>

namespace mossbank {

inline constexpr QSize kSize = {320, 80};
inline constexpr QPoint kPlace = {40, 30};

/// Without the thirds of their pixels.
inline QList<QImage> wholeImages(const QImage& picture, const QRect& line,
                                 const QList<QRect>& lines)
{
    QList<QImage> images;
    for (const LineImage& image : imagesOfLine(picture, line, lines))
        images.append(image.whole);
    return images;
}

/// What comes of two words, black on white, with nothing around.
inline QList<QImage> plainImages()
{
    QImage picture = plain(kSize);
    const QRect line = write(picture, kPlace, {4, 3});
    return wholeImages(picture, line, {line});
}

inline int valueAt(const QImage& image, int x, int y)
{
    return image.constScanLine(y)[x];
}

/// The darkest value there is.
inline int darkest(const QImage& image)
{
    int value = 255;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            value = std::min(value, valueAt(image, x, y));
    return value;
}

inline int darkPixels(const QImage& image)
{
    constexpr int kDark = 128;
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += valueAt(image, x, y) < kDark;
    return count;
}

} // namespace mossbank
