// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/LetterCells.h"

#include <QImage>

#include <algorithm>
#include <cmath>

namespace mossbank {

namespace {

constexpr int kWhite = 255;
/// Nothing, or what a letter beside leaves in a cell that is empty.
constexpr int kFaint = 60;
/// What is at least so dark is part of a letter.
constexpr int kInk = 110;

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

/// How far the ink in a cell reaches, in parts of a pixel from above.
struct Extent {
    int place = 0;
    double top = 0;
    double bottom = 0;
};

/// Absent for an empty cell.
std::optional<Extent> extentOf(const QImage& line, const FixedPitch& pitch, int place)
{
    constexpr double kBeside = 0.15; // of a cell, where letters may touch
    const double beside = kBeside * pitch.width;
    const int from = std::max(0, static_cast<int>(std::floor(pitch.cell(place) + beside)));
    const int to =
        std::min(line.width(), static_cast<int>(std::ceil(pitch.cell(place + 1) - beside)));
    std::vector<int> rows;
    for (int y = 0; y < line.height() && from < to; ++y) {
        const uchar* const row = line.constScanLine(y);
        rows.push_back(kWhite - *std::min_element(row + from, row + to));
    }
    const int most = rows.empty() ? 0 : *std::ranges::max_element(rows);
    if (most < kFaint)
        return {};
    // An underscore thinner than a pixel is fainter than letters are.
    const int least = most < kInk ? most / 2 : kInk;
    const auto isLetter = [&](int dark) {
        return dark >= least;
    };
    const auto edge = [&](int here, int before) {
        return static_cast<double>(here - least) / (here - before);
    };
    Extent extent{place, 0, static_cast<double>(line.height())};
    const auto top = std::ranges::find_if(rows, isLetter);
    const auto bottom = std::find_if(rows.rbegin(), rows.rend(), isLetter);
    extent.top =
        static_cast<double>(top - rows.begin()) - edge(*top, top == rows.begin() ? 0 : *(top - 1));
    extent.bottom = static_cast<double>(rows.rend() - bottom) +
                    edge(*bottom, bottom == rows.rbegin() ? 0 : *(bottom - 1));
    return extent;
}

/// How many strokes a row has between two columns, `to` left out.
int strokes(const uchar* row, int from, int to)
{
    constexpr int kLeast = 100;
    constexpr int kDeep = 45; // between two of them
    int count = 0;
    int furthest = 0; // dark within a stroke, light between two
    bool isStroke = true;
    for (int x = from; x < to; ++x) {
        const int ink = kWhite - row[x];
        if (isStroke) {
            furthest = std::max(furthest, ink);
            if (furthest < kLeast || ink >= furthest - kDeep)
                continue;
            ++count;
        } else {
            furthest = std::min(furthest, ink);
            if (ink < kLeast || ink <= furthest + kDeep)
                continue;
        }
        isStroke = !isStroke;
        furthest = ink;
    }
    return count + (isStroke && furthest >= kLeast ? 1 : 0);
}

/// Whether a letter that stands on a line so far down can be nothing but an "@". An m has as many
/// strokes and reaches less far; whatever reaches as far has fewer.
bool isAtSign(const QImage& line, const FixedPitch& pitch, const Extent& extent, double base)
{
    constexpr double kBeside = 0.6; // pixels, which letters beside may touch
    constexpr double kAbove = 1.02; // cells, as all the following
    constexpr double kBelow = 0.15;
    constexpr double kLow = 0.2;
    if (base - extent.top < kAbove * pitch.width || extent.bottom - base < kBelow * pitch.width)
        return false;
    const int from = std::max(0, static_cast<int>(std::floor(pitch.cell(extent.place) + kBeside)));
    const int to =
        std::min(line.width(), static_cast<int>(std::ceil(pitch.cell(extent.place + 1) - kBeside)));
    const int least = std::max(2, static_cast<int>(std::lround(kLow * pitch.width)));
    int rows = 0;
    for (int y = 0; y < line.height() && rows < least; ++y)
        rows = strokes(line.constScanLine(y), from, to) >= 3 ? rows + 1 : 0;
    return rows >= least;
}

double inkAt(const QImage& line, double x, double y)
{
    const int left = static_cast<int>(std::floor(x));
    const int top = static_cast<int>(std::floor(y));
    const auto ink = [&](int column, int row) {
        return line.rect().contains(column, row) ? kWhite - line.constScanLine(row)[column] : 0;
    };
    const double across = x - left;
    const double down = y - top;
    return (ink(left, top) * (1 - across) + ink(left + 1, top) * across) * (1 - down) +
           (ink(left, top + 1) * (1 - across) + ink(left + 1, top + 1) * across) * down;
}

/// The shape in a cell that stands on a line so far down.
LetterShape shapeOf(const QImage& line, const FixedPitch& pitch, int place, double base)
{
    constexpr int kColumns = 8;
    constexpr int kRows = static_cast<int>(LetterShape().size()) / kColumns;
    constexpr double kAbove = 1.6; // cells
    constexpr double kBelow = 0.6;
    LetterShape shape = {};
    for (int row = 0; row < kRows; ++row) {
        const double y =
            base + pitch.width * (-kAbove + (kAbove + kBelow) * (row + 0.5) / kRows) - 0.5;
        for (int column = 0; column < kColumns; ++column) {
            const double x = pitch.cell(place) + pitch.width * (column + 0.5) / kColumns - 0.5;
            shape[static_cast<std::size_t>(row * kColumns + column)] =
                static_cast<std::uint8_t>(std::lround(inkAt(line, x, y)));
        }
    }
    return shape;
}

} // namespace

std::optional<LetterCells> letterCellsOf(const QImage& line, const std::optional<FixedPitch>& pitch)
{
    if (!pitch)
        return {};
    std::vector<Extent> extents;
    std::vector<double> bottoms;
    for (int place = 0; place < pitch->count; ++place) {
        if (const auto extent = extentOf(line, *pitch, place)) {
            extents.push_back(*extent);
            bottoms.push_back(extent->bottom);
        }
    }
    if (extents.empty())
        return {};
    // Most letters stand on it.
    const double base = median(bottoms);
    LetterCells cells{.width = pitch->width, .letters = {}, .runs = {}};
    for (const Extent& extent : extents) {
        const bool isNext = !cells.letters.empty() && extent.place == (&extent - 1)->place + 1;
        if (!isNext)
            cells.runs.push_back({cells.letters.size(), 0});
        ++cells.runs.back().length;
        cells.letters.push_back({.top = (base - extent.top) / pitch->width,
                                 .bottom = (extent.bottom - base) / pitch->width,
                                 .shape = shapeOf(line, *pitch, extent.place, base),
                                 .isAtSign = isAtSign(line, *pitch, extent, base)});
    }
    return cells;
}

std::vector<bool> areOfFixedPitch(const std::vector<const LetterCells*>& lines)
{
    constexpr double kSame = 0.008; // of the width
    constexpr std::size_t kLong = 14;
    constexpr std::size_t kFewest = 90; // letters on other lines
    std::vector<bool> are;
    const auto isLong = [](const LetterCells* line) {
        return line && line->letters.size() >= kLong;
    };
    for (const LetterCells* const line : lines) {
        std::size_t letters = 0;
        for (const LetterCells* const other : lines) {
            const bool isLike = isLong(line) && isLong(other) && line != other &&
                                std::abs(other->width - line->width) < kSame * line->width;
            letters += isLike ? other->letters.size() : 0;
        }
        are.push_back(letters >= kFewest);
    }
    return are;
}

} // namespace mossbank
