// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <vector>

namespace mossbank {

class ColourSteps;

/// The widest gap within a piece of a line, in pixels: that between two words of small text.
inline constexpr int kGapWithinPiece = 10;

/// A rectangle by its corners, the right and the lower end left out.
struct Box {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    int width() const { return right - left; }
    int height() const { return bottom - top; }
    double area() const { return static_cast<double>(width()) * height(); }
    void include(const Box& other)
    {
        left = std::min(left, other.left);
        top = std::min(top, other.top);
        right = std::max(right, other.right);
        bottom = std::max(bottom, other.bottom);
    }
};

/// What stands close together on a picture, each at most one line high: words, parts of lines,
/// letters, the dots above them, and much that is no text.
///
/// Threading: any thread.
std::vector<Box> linePieces(const ColourSteps& steps);

} // namespace mossbank
