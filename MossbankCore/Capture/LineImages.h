// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QList>
#include <QRect>

namespace mossbank {

/// The line in `line` as a recogniser wants it: one grey image or, where wide gaps, cell borders
/// or another background part it, several from left to right. Dark letters on white, whatever they
/// were; each word as dark as the next; nothing of what lies around.
///
/// `lines` are all the lines found on the picture, of which none may show in another's image.
///
/// Threading: any thread. Takes a picture of 32 bits a pixel.
QList<QImage> imagesOfLine(const QImage& picture, const QRect& line, const QList<QRect>& lines);

} // namespace mossbank
