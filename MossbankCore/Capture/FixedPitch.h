// SPDX-License-Identifier: Apache-2.0
#pragma once

class QImage;

#include <optional>

namespace mossbank {

/// A line in letters that are all equally wide, as terminals and editors have them, is cut into
/// cells of a letter or a space each.
struct FixedPitch {
    /// Of a cell, in pixels. Hardly ever a whole number.
    double width = 0;
    /// The left side of the first cell; may lie a little to the left of the picture.
    double start = 0;
    /// How many cells there are up to the last letter.
    int count = 0;

    double cell(int place) const { return start + width * place; }
};

/// The cells of a grey image of one line, dark on white. Absent where letters are of different
/// widths, or too few to tell.
///
/// Threading: any thread.
std::optional<FixedPitch> fixedPitchOf(const QImage& line);

} // namespace mossbank
