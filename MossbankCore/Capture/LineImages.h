// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QList>
#include <QRect>

namespace mossbank {

/// Part of a line, dark letters on white.
struct LineImage {
    /// Of Format_Grayscale8.
    QImage whole;
    /// The same, three times as wide, with a column for each third of a pixel. Null where letters
    /// are drawn in whole pixels.
    QImage thirds;

    friend bool operator==(const LineImage&, const LineImage&) = default;
};

/// The line in `line` as a recogniser wants it: one grey image or, where wide gaps, cell borders
/// or another background part it, several from left to right. Dark letters on white, whatever they
/// were; each word as dark as the next; nothing of what lies around.
///
/// `lines` are all the lines found on the picture, of which none may show in another's image.
///
/// Threading: any thread. Takes a picture of 32 bits a pixel.
QList<LineImage> imagesOfLine(const QImage& picture, const QRect& line, const QList<QRect>& lines);

} // namespace mossbank
