// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QRect>
#include <QRgb>

namespace mossbank::test {

/// All that the display named by DISPLAY shows now. Null where there is none.
QImage grabDisplay();

/// The smallest rectangle with all pixels of exactly this colour in one part of an image. Empty
/// where there are none.
QRect boundsOf(const QImage& image, QRgb colour, const QRect& part);

} // namespace mossbank::test
