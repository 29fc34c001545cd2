// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QList>
#include <QRect>

namespace mossbank {

/// Finds the lines of text on a picture of a screen, dark on light, light on dark, on buttons and
/// badges alike.
///
/// What text has and hardly anything else on a screen has is many changes of colour from one pixel
/// to the next along a row, close together. Such pixels joined across small gaps are pieces of
/// lines; pieces side by side at the same height are a line.
///
/// Threading: any thread.
class TextLineFinder {
public:
    TextLineFinder() = delete;

    /// The rectangles of the lines in pixels, tight around their letters with accents and
    /// descenders, in no order. A line holds what is read as one: the cells of a table may come
    /// as one or as several.
    ///
    /// Takes a picture of Format_RGB32 or Format_ARGB32; none for any other.
    static QList<QRect> find(const QImage& picture);
};

} // namespace mossbank
