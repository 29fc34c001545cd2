// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/LineBackground.h"

#include "MossbankCore/Capture/ColourSteps.h"

#include <algorithm>
#include <utility>

namespace mossbank {

namespace {

/// Colours no further apart than this are one background.
constexpr int kSame = 20;

/// Of each colour without its lowest bits, so that a dithered or graded background is one.
constexpr int kDropped = 3;
constexpr int kKept = 8 - kDropped;
constexpr std::size_t kCoarseColours = std::size_t(1) << 3 * kKept;

std::size_t coarse(QRgb colour)
{
    return static_cast<std::size_t>(qRed(colour) >> kDropped << 2 * kKept |
                                    qGreen(colour) >> kDropped << kKept |
                                    qBlue(colour) >> kDropped);
}

/// Calls `work` with each colour of an area and how many pixels side by side have it.
template <typename Work>
void forEachRun(const QImage& picture, const QRect& area, Work work)
{
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const QRgb* const row = pixelsOf(picture, y);
        const QRgb* const end = row + area.right() + 1;
        for (const QRgb* start = row + area.left(); start < end;) {
            const QRgb* const next =
                std::find_if(start, end, [&](QRgb colour) { return colour != *start; });
            work(*start, next - start);
            start = next;
        }
    }
}

/// The colour that most of an area has: of a line of text, its background.
QRgb commonest(const QImage& picture, const QRect& area)
{
    // All are 0 in between: to clear what was counted takes less than to clear them all.
    thread_local std::vector<std::ptrdiff_t> counts(kCoarseColours);
    std::size_t best = 0;
    std::ptrdiff_t most = 0;
    forEachRun(picture, area, [&](QRgb colour, std::ptrdiff_t length) {
        const std::size_t here = coarse(colour);
        const std::ptrdiff_t count = counts[here] += length;
        // Of those that are as common the first, whatever their order in the picture.
        if (count > most || (count == most && here < best)) {
            most = count;
            best = here;
        }
    });
    std::vector<QRgb> ofBest;
    ofBest.reserve(static_cast<std::size_t>(most));
    forEachRun(picture, area, [&](QRgb colour, std::ptrdiff_t length) {
        const std::size_t here = coarse(colour);
        counts[here] = 0;
        if (here == best)
            ofBest.insert(ofBest.end(), static_cast<std::size_t>(length), colour);
    });
    if (ofBest.empty())
        return 0;
    // Of those that are one but for the lowest bits, the middle one.
    const auto middle = ofBest.begin() + static_cast<std::ptrdiff_t>(ofBest.size() / 2);
    std::ranges::nth_element(ofBest, middle);
    return *middle;
}

/// The part of an area that has about this colour, 0 to 1.
double share(const QImage& picture, const QRect& area, QRgb colour)
{
    qsizetype count = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const QRgb* const row = pixelsOf(picture, y);
        for (int x = area.left(); x <= area.right(); ++x)
            count += distance(row[x], colour) <= kSame;
    }
    return static_cast<double>(count) / (static_cast<double>(area.width()) * area.height());
}

QRect column(const QRect& area, int from, int to)
{
    return {from, area.top(), to - from, area.height()};
}

/// The longest stretch of a colour in one of the rows of an area.
int longestRun(const QImage& picture, const QRect& area, QRgb colour)
{
    int longest = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const QRgb* const row = pixelsOf(picture, y);
        int run = 0;
        for (int x = area.left(); x <= area.right(); ++x) {
            run = distance(row[x], colour) <= kSame ? run + 1 : 0;
            longest = std::max(longest, run);
        }
    }
    return longest;
}

/// The rows just above and just below an area, in which there is hardly anything of its letters.
QList<QRect> rowsAround(const QImage& picture, const QRect& area)
{
    const int rows = std::max(2, area.height() / 6);
    QList<QRect> around;
    for (const int top : {area.top() - rows, area.bottom() + 1}) {
        const QRect beside = QRect(area.left(), top, area.width(), rows) & picture.rect();
        if (!beside.isEmpty())
            around.append(beside);
    }
    return around;
}

/// Whether a colour that much of an area has is that of its letters all the same: bold figures
/// cover more than half of it. What is behind letters goes on above or below them. That of a badge
/// as high as the area does not, but goes on along a row further than any letter is wide, or both
/// over and under its letters nearly as far.
bool isOfLetters(const QImage& picture, const QRect& area, QRgb colour)
{
    constexpr double kHardly = 0.25;
    constexpr double kNearly = 0.75;
    const int height = area.height();
    if (area.width() <= height || longestRun(picture, area, colour) >= height)
        return false;
    const int third = (height + 2) / 3;
    const int over = longestRun(picture, area.adjusted(0, 0, 0, third - height), colour);
    const int under = longestRun(picture, area.adjusted(0, height - third, 0, 0), colour);
    if (std::min(over, under) >= kNearly * height)
        return false;
    const QList<QRect> around = rowsAround(picture, area);
    return !around.isEmpty() && std::ranges::all_of(around, [&](const QRect& rows) {
        return share(picture, rows, colour) < kHardly;
    });
}

/// The column at which one background gives way to the next within an area: with the most of the
/// first before it and of the next from it on. A single column tells little: a stem may have the
/// colour of what is around the badge.
int borderOf(const QImage& picture, const QRect& area, QRgb first, QRgb next)
{
    int border = area.left();
    double most = 0;
    double sum = 0;
    for (int x = area.left(); x < area.right(); ++x) {
        const QRect one = column(area, x, x + 1);
        sum += share(picture, one, first) - share(picture, one, next);
        if (sum >= most) {
            most = sum;
            border = x + 1;
        }
    }
    return border;
}

/// Gives to its neighbour what is too narrow to hold a letter, to that before it where there is
/// one, and joins what turns out to be on the same background.
QList<LinePart> withoutSlivers(const QList<LinePart>& parts)
{
    QList<LinePart> kept;
    for (const LinePart& part : parts) {
        const bool isSliver = part.area.width() * 10 < part.area.height() * 7;
        if (kept.isEmpty()) {
            if (isSliver)
                continue;
            kept.append(part);
            kept.first().area.setLeft(parts.first().area.left());
        } else if (isSliver || distance(kept.last().background, part.background) <= kSame) {
            kept.last().area.setRight(part.area.right());
        } else {
            kept.append(part);
        }
    }
    if (kept.isEmpty())
        kept.append({parts.first().area | parts.last().area, parts.first().background});
    return kept;
}

} // namespace

QList<LinePart> partsOf(const QImage& picture, const QRect& area)
{
    // As long as the background makes up so much of what is looked at, it is still the same; in
    // bold letters it is less than half.
    constexpr double kStill = 0.25;
    constexpr double kNew = 0.4;
    // Above and below a row of its own colour there may be a good part of the former one.
    constexpr double kSurely = 0.5;
    constexpr double kMore = 1.3;
    const int window = std::max(12, area.height() * 5 / 4);
    const int step = std::max(2, area.height() / 6);
    const int left = area.left();
    const int end = area.left() + area.width();
    QList<LinePart> parts;
    const QRect first = column(area, left, std::min(end, left + 2 * window));
    QRgb current = commonest(picture, first);
    if (isOfLetters(picture, first, current))
        current = commonest(picture, rowsAround(picture, first).first());
    int start = left;
    for (int x = left; x < end; x += step) {
        const int to = std::min(end, std::max(left, x - window / 2) + window);
        const QRect around = column(area, std::max(left, to - window), to);
        const double still = share(picture, around, current);
        if (still >= kSurely)
            continue;
        const QRgb other = commonest(picture, around);
        const double least = still < kStill ? kNew : std::max(kNew, kMore * still);
        if (distance(other, current) <= kSame || share(picture, around, other) < least ||
            isOfLetters(picture, around, other))
            continue;
        const int border =
            borderOf(picture, column(area, std::max(start, around.left()), to), current, other);
        if (border > start)
            parts.append({column(area, start, border), current});
        start = border;
        current = other;
    }
    parts.append({column(area, start, end), current});
    return withoutSlivers(parts);
}

std::vector<QRgb> backgroundsOf(const QImage& picture, const LinePart& part, int left, int right)
{
    // Further apart than a gradient is from one window to the next.
    constexpr int kJump = 28;
    const int window = std::max(24, 3 * part.area.height());
    const int step = window / 2;
    std::vector<std::pair<int, QRgb>> points;
    for (int at = left; at < right + step; at += step) {
        const int middle = std::min(at, right - 1);
        const int from = std::clamp(middle - window / 2, left, right);
        const int to = std::clamp(middle + window / 2, left, right);
        const QRgb before = points.empty() ? part.background : points.back().second;
        const QRgb found = to > from ? commonest(picture, column(part.area, from, to)) : before;
        points.emplace_back(middle, distance(found, before) > kJump ? before : found);
    }
    std::vector<QRgb> backgrounds;
    std::size_t point = 0;
    for (int x = left; x < right; ++x) {
        while (point + 2 < points.size() && points[point + 1].first < x)
            ++point;
        const auto& [from, before] = points[point];
        const auto& [to, after] = points[std::min(point + 1, points.size() - 1)];
        const double progress =
            to > from ? std::clamp(static_cast<double>(x - from) / (to - from), 0.0, 1.0) : 0.0;
        const auto between = [&](int one, int other) {
            return static_cast<int>(one + (other - one) * progress + 0.5);
        };
        backgrounds.push_back(qRgb(between(qRed(before), qRed(after)),
                                   between(qGreen(before), qGreen(after)),
                                   between(qBlue(before), qBlue(after))));
    }
    return backgrounds;
}

} // namespace mossbank
