// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/ReadingOrder.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace mossbank {

namespace {

/// Start and end of a line in one direction, the end left out.
using Extent = std::function<std::pair<int, int>(const QRect&)>;

std::pair<int, int> across(const QRect& line)
{
    return {line.left(), line.left() + line.width()};
}

std::pair<int, int> down(const QRect& line)
{
    return {line.top(), line.top() + line.height()};
}

/// Parts `lines` where none of them is for at least `gap` pixels.
QList<QList<QRect>> parted(QList<QRect> lines, const Extent& extent, int gap)
{
    std::ranges::sort(lines, {}, [&](const QRect& line) { return extent(line); });
    QList<QList<QRect>> parts;
    int end = 0;
    for (const QRect& line : lines) {
        const auto [start, lineEnd] = extent(line);
        if (parts.isEmpty() || start - end >= gap)
            parts.append(QList<QRect>());
        end = parts.last().isEmpty() ? lineEnd : std::max(end, lineEnd);
        parts.last().append(line);
    }
    return parts;
}

/// The largest gap that parts `lines` from top to bottom; 0 when none does.
int largestGapDown(QList<QRect> lines)
{
    std::ranges::sort(lines, {}, down);
    int largest = 0;
    int end = lines.first().top();
    for (const QRect& line : lines) {
        largest = std::max(largest, line.top() - end);
        end = std::max(end, line.top() + line.height());
    }
    return largest;
}

/// Whether two lines stand in one row: of words beside each other one may begin a pixel higher.
bool areBeside(const QRect& one, const QRect& other)
{
    constexpr double kCommon = 0.6;
    const int lower = std::min(one.height(), other.height());
    const int common =
        std::min(one.bottom(), other.bottom()) + 1 - std::max(one.top(), other.top());
    return common >= kCommon * lower;
}

/// `lines` row by row from the top, each from the left.
QList<QRect> inRows(QList<QRect> lines)
{
    std::ranges::sort(lines, {},
                      [](const QRect& line) { return std::pair(line.top(), line.left()); });
    QList<QList<QRect>> rows;
    for (const QRect& line : std::as_const(lines)) {
        // With all of them: what is high stands beside several rows.
        const auto isOfRow = [&](const QList<QRect>& row) {
            return std::ranges::all_of(row,
                                       [&](const QRect& other) { return areBeside(line, other); });
        };
        if (!rows.isEmpty() && isOfRow(rows.last()))
            rows.last().append(line);
        else
            rows.append(QList<QRect>{line});
    }
    QList<QRect> all;
    for (QList<QRect>& row : rows) {
        std::ranges::sort(row, {},
                          [](const QRect& line) { return std::pair(line.left(), line.top()); });
        all += row;
    }
    return all;
}

QList<QRect> ordered(const QList<QRect>& lines, int columnGap)
{
    if (lines.size() < 2)
        return lines;
    auto parts = parted(lines, across, columnGap);
    // Nothing but what spans the columns can be in the way: part that from them.
    if (parts.size() == 1) {
        const int gap = largestGapDown(lines);
        if (gap > 0)
            parts = parted(lines, down, gap);
    }
    if (parts.size() == 1)
        return inRows(lines);
    QList<QRect> all;
    for (const QList<QRect>& part : std::as_const(parts))
        all += ordered(part, columnGap);
    return all;
}

} // namespace

QList<QRect> inReadingOrder(QList<QRect> lines)
{
    if (lines.isEmpty())
        return {};
    QList<int> heights;
    for (const QRect& line : std::as_const(lines))
        heights.append(line.height());
    std::ranges::sort(heights);
    // What a space between words never is.
    const int columnGap = std::max(1, heights.at(heights.size() / 2));
    return ordered(lines, columnGap);
}

} // namespace mossbank
