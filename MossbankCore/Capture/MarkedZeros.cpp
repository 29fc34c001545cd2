// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/MarkedZeros.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace mossbank {

namespace {

constexpr int kWhite = 255;
/// What is at least so dark is part of a letter.
constexpr int kInk = 110;

int ink(const QImage& line, int x, int y)
{
    return x < 0 || x >= line.width() ? 0 : kWhite - line.constScanLine(y)[x];
}

/// The darkest of part of a row, `to` included.
int darkest(const QImage& line, int y, int from, int to)
{
    int most = 0;
    for (int x = from; x <= to; ++x)
        most = std::max(most, ink(line, x, y));
    return most;
}

/// Where the letter in a cell begins and ends from row to row, in parts of a pixel.
struct Outline {
    int top = 0;
    std::vector<double> left;
    std::vector<double> right;

    int height() const { return static_cast<int>(left.size()); }
    int bottom() const { return top + height() - 1; }
    double leftmost() const { return left[left.size() / 2]; }
    double rightmost() const { return right[right.size() / 2]; }
    double middle() const { return (leftmost() + rightmost()) / 2; }
};

/// Where a row comes up to `kInk` first, going from `from` to `to`.
std::optional<double> edge(const QImage& line, int y, int from, int to)
{
    const int step = from < to ? 1 : -1;
    int before = 0;
    for (int x = from; x != to + step; x += step) {
        const int here = ink(line, x, y);
        if (here >= kInk)
            return x - step * static_cast<double>(here - kInk) / (here - before);
        before = here;
    }
    return {};
}

/// That of a letter closed above, below and on both sides.
std::optional<Outline> outlineWithin(const QImage& line, double from, double to)
{
    constexpr double kBeside = 0.33; // of the cell
    constexpr int kLowest = 7;
    const int inner = static_cast<int>(std::floor(from + kBeside * (to - from)));
    const int innerEnd = static_cast<int>(std::ceil(to - kBeside * (to - from))) - 1;
    int top = line.height();
    int bottom = -1;
    for (int y = 0; y < line.height(); ++y) {
        if (darkest(line, y, inner, innerEnd) >= kInk) {
            top = std::min(top, y);
            bottom = y;
        }
    }
    if (bottom - top + 1 < kLowest)
        return {};
    Outline outline{.top = top, .left = {}, .right = {}};
    const int first = static_cast<int>(std::floor(from));
    const int last = static_cast<int>(std::ceil(to)) - 1;
    const double middle = (from + to) / 2;
    for (int y = top; y <= bottom; ++y) {
        const double left = edge(line, y, first, last).value_or(line.width());
        const double right = edge(line, y, last, first).value_or(-1);
        const bool isEnd = y == top || y == bottom;
        if (!isEnd && (left > middle || right < middle))
            return {};
        outline.left.push_back(std::min(left, middle));
        outline.right.push_back(std::max(right, middle));
    }
    return outline;
}

/// Whether a side goes outwards and then inwards only. `out` is 1 where outwards is to the right,
/// and -1 where it is to the left.
bool isBow(const std::vector<double>& side, int out)
{
    // A good deal less than the waist of an eight, or the opening of a six.
    constexpr double kUneven = 0.12;
    for (auto row = side.begin() + 1; row + 1 != side.end(); ++row) {
        const auto furthest = [&](auto begin, auto end) {
            const auto [least, most] = std::minmax_element(begin, end);
            return out * (out > 0 ? *most : *least);
        };
        const double beside = std::min(furthest(side.begin(), row), furthest(row + 1, side.end()));
        if (out * *row < beside - kUneven)
            return false;
    }
    return true;
}

/// Whether the outline is that of a zero: upright, round, the lower half like the upper one.
bool isOval(const Outline& outline)
{
    constexpr double kLeastUpright = 1.2;
    constexpr double kMostUpright = 2.8;
    constexpr double kRound = 0.45; // pixels
    constexpr double kUnlike = 0.8;
    const double width = outline.rightmost() - outline.leftmost();
    const auto last = outline.left.size() - 1;
    if (outline.height() < kLeastUpright * width || outline.height() > kMostUpright * width ||
        !isBow(outline.left, -1) || !isBow(outline.right, 1))
        return false;
    for (const std::size_t row : {std::size_t(0), last}) {
        if (outline.left[row] - outline.leftmost() < kRound ||
            outline.rightmost() - outline.right[row] < kRound)
            return false;
    }
    for (std::size_t row = 0; row < last - row; ++row) {
        if (std::abs(outline.left[row] - outline.left[last - row]) > kUnlike ||
            std::abs(outline.right[row] - outline.right[last - row]) > kUnlike)
            return false;
    }
    return true;
}

/// Whether there is something in the middle.
bool hasMark(const QImage& line, const Outline& outline)
{
    constexpr int kLeast = 60;
    const int from = static_cast<int>(std::lround(outline.middle() - 0.6));
    const int to = static_cast<int>(std::lround(outline.middle() + 0.1));
    const int row = outline.top + (outline.height() - 1) / 2;
    return std::max(darkest(line, row, from, to),
                    darkest(line, outline.top + outline.height() / 2, from, to)) >= kLeast;
}

/// Gives each column within the zero, between its upper and its lower bow, the lightest that it
/// has there: a dot or a stroke does not fill a column, and its sides do.
void removeMark(const Outline& outline, QImage& line)
{
    constexpr int kBow = 170;
    constexpr int kThickest = 3;
    const int from = static_cast<int>(std::ceil(outline.leftmost())) + 1;
    const int to = static_cast<int>(std::floor(outline.rightmost())) - 1;
    const auto isBowAt = [&](int y) {
        return darkest(line, y, static_cast<int>(std::floor(outline.middle())),
                       static_cast<int>(std::ceil(outline.middle()))) > kBow;
    };
    int top = outline.top + 1;
    while (top < outline.top + kThickest && isBowAt(top))
        ++top;
    int bottom = outline.bottom() - 1;
    while (bottom > outline.bottom() - kThickest && isBowAt(bottom))
        --bottom;
    for (int x = from; x <= to; ++x) {
        uchar lightest = 0;
        for (int y = top; y <= bottom; ++y)
            lightest = std::max(lightest, line.constScanLine(y)[x]);
        for (int y = top; y <= bottom; ++y)
            line.scanLine(y)[x] = lightest;
    }
}

} // namespace

QImage withPlainZeros(const QImage& line, const std::optional<FixedPitch>& pitch)
{
    if (!pitch)
        return line;
    QImage plain = line;
    for (int place = 0; place < pitch->count; ++place) {
        const auto outline = outlineWithin(line, pitch->cell(place), pitch->cell(place + 1));
        if (outline && isOval(*outline) && hasMark(line, *outline))
            removeMark(*outline, plain);
    }
    return plain;
}

} // namespace mossbank
