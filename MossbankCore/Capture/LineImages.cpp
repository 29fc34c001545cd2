// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/LineImages.h"

#include "MossbankCore/Capture/LineBackground.h"
#include "MossbankCore/Capture/LineInk.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <vector>

namespace mossbank {

namespace {

constexpr int kLowestLetter = 5;
/// In its heights: recognisers take no image that is wider than 32,767 pixels, and lines are made
/// larger for them. A line of small letters right across the widest display is shorter.
constexpr int kLongestLine = 500;
constexpr int kWhite = 255;

struct Columns {
    int from = 0;
    int to = 0;
};

/// The stretches of columns with letters, no gap within them wider than `gap` or walled.
std::vector<Columns> stretches(const LineInk& ink, const std::vector<bool>& hasLetters, int gap)
{
    std::vector<Columns> found;
    bool isOpen = false;
    for (int x = 0; x < ink.width(); ++x) {
        if (hasLetters[static_cast<std::size_t>(x)]) {
            if (!isOpen || x - found.back().to > gap)
                found.push_back({x, x + 1});
            found.back().to = x + 1;
            isOpen = true;
        } else if (ink.isWall(x)) {
            isOpen = false;
        }
    }
    return found;
}

/// Columns with letters, parted at their gaps where there are more than `most` of them. In letters
/// that have none they are parted anywhere.
std::vector<Columns> noLongerThan(int most, const Columns& columns,
                                  const std::vector<bool>& hasLetters)
{
    const auto isBlank = [&](int x) {
        return !hasLetters[static_cast<std::size_t>(x)];
    };
    std::vector<Columns> parts;
    Columns rest = columns;
    while (rest.to - rest.from > most) {
        // The widest gap towards the end of what one part may have: one between words.
        Columns widest = {rest.from + most, rest.from + most};
        for (int x = rest.from + most / 2; x < rest.from + most; ++x) {
            const int begin = x;
            while (x < rest.from + most && isBlank(x))
                ++x;
            if (x > begin && x - begin >= widest.to - widest.from)
                widest = {begin, x};
        }
        parts.push_back({rest.from, widest.from});
        rest.from = widest.to;
    }
    parts.push_back(rest);
    return parts;
}

std::vector<bool> columnsWithLetters(const LineInk& ink)
{
    std::vector<bool> hasLetters;
    for (int x = 0; x < ink.width(); ++x)
        hasLetters.push_back(ink.hasLetters(x));
    return hasLetters;
}

/// Letters dark on white, each word stretched by itself to black.
LineImage stretched(const LineInk& ink, const std::vector<bool>& hasLetters)
{
    constexpr int kMargin = 2;
    const std::optional<Thirds> thirds = ink.thirds();
    LineImage images = {.whole = QImage(ink.width(), ink.height(), QImage::Format_Grayscale8),
                        .thirds = {}};
    images.whole.fill(kWhite);
    if (thirds) {
        images.thirds = QImage(kChannels * ink.width(), ink.height(), QImage::Format_Grayscale8);
        images.thirds.fill(kWhite);
    }
    const auto draw = [&](QImage& image, const Columns& at, int step, int third,
                          const LineInk::Shade& shade) {
        const int contrast = ink.contrast(at.from, at.to, shade);
        for (int y = 0; y < ink.height(); ++y) {
            uchar* const row = image.scanLine(y);
            for (int x = at.from; x < at.to; ++x) {
                uchar& pixel = row[step * x + third];
                const int dark = std::min(kWhite, shade(x, y) * kWhite / contrast);
                pixel = static_cast<uchar>(std::min<int>(pixel, kWhite - dark));
            }
        }
    };
    for (const Columns& word : stretches(ink, hasLetters, std::max(3, ink.height() / 8))) {
        const Columns at = {std::max(0, word.from - kMargin),
                            std::min(ink.width(), word.to + kMargin)};
        draw(images.whole, at, 1, 0,
             [&](int x, int y) { return thirds ? ink.shade(x, y) : ink.at(x, y); });
        for (int third = 0; thirds && third < kChannels; ++third) {
            const int channel = (*thirds)[static_cast<std::size_t>(third)];
            draw(images.thirds, at, kChannels, third,
                 [&](int x, int y) { return ink.shadeOf(channel, x, y); });
        }
    }
    return images;
}

LineImage copied(const LineImage& image, const QRect& area)
{
    const QRect common = area & image.whole.rect();
    const QRect wide(kChannels * common.x(), common.y(), kChannels * common.width(),
                     common.height());
    return {.whole = image.whole.copy(common), .thirds = image.thirds.copy(wide)};
}

/// Whether what stands before some letters is none of them: a box to be checked, or the side of a
/// field, which no letter reaches as far out above and below as.
bool isBoxOrSide(const LineInk& ink, const QRect& first, const QRect& letters)
{
    constexpr int kSmallest = 9;
    const int away = letters.left() - first.right() - 1;
    const bool isSquare = std::abs(first.width() - first.height()) <= 1;
    if (isSquare && first.height() >= kSmallest && 4 * away >= first.height())
        return ink.isEmptyBox(first);
    const int out = std::min(letters.top() - first.top(), first.bottom() - letters.bottom());
    return first.height() > 3 * first.width() && 4 * out > letters.height();
}

/// Removes boxes and sides of fields that stand before the words.
void removeBoxes(LineInk& ink, int gap)
{
    constexpr int kApart = 4;
    const std::vector<bool> hasLetters = columnsWithLetters(ink);
    const std::vector<Columns> parts = stretches(ink, hasLetters, kApart);
    for (const Columns& columns : stretches(ink, hasLetters, gap)) {
        const auto first = std::ranges::find(parts, columns.from, &Columns::from);
        if (first == parts.end() || first->to == columns.to)
            continue;
        const int behind = (first + 1)->from;
        if (isBoxOrSide(ink, ink.lettersWithin(first->from, first->to),
                        ink.lettersWithin(behind, columns.to)))
            ink.remove(columns.from, behind);
    }
}

void addImages(const QImage& picture, const LinePart& part, bool isFirst, bool isLast,
               const QList<QRect>& lines, QList<LineImage>& images)
{
    constexpr int kBeside = 4;
    constexpr int kMargin = 3;
    const int above = std::max(3, part.area.height() / 5);
    const QRect around =
        part.area.adjusted(isFirst ? -kBeside : 0, -above, isLast ? kBeside : 0, above) &
        picture.rect();
    LineInk ink(picture, part, around);
    ink.removeWalls();
    ink.removeOthers(lines);
    ink.removeWhatTouchesTheBorder();
    const int gap = part.area.height() + 2;
    for (const Columns& columns : stretches(ink, columnsWithLetters(ink), gap))
        ink.removeFrame(columns.from, columns.to);
    removeBoxes(ink, gap);
    const std::vector<bool> hasLetters = columnsWithLetters(ink);
    const LineImage image = stretched(ink, hasLetters);
    for (const Columns& columns : stretches(ink, hasLetters, gap)) {
        const int from = std::max(0, columns.from - kMargin);
        const int to = std::min(ink.width(), columns.to + kMargin);
        const QRect letters = ink.lettersWithin(from, to);
        if (letters.height() < kLowestLetter ||
            ink.isBlock(ink.lettersWithin(columns.from, columns.to)))
            continue;
        const QRect area = letters.adjusted(0, -2, 0, 2);
        for (const Columns& some :
             noLongerThan(kLongestLine * area.height(), columns, hasLetters)) {
            const int left = std::max(area.left(), some.from - kMargin);
            const int right = std::min(area.right(), some.to - 1 + kMargin);
            images.append(copied(image, {left, area.top(), right - left + 1, area.height()}));
        }
    }
}

} // namespace

QList<LineImage> imagesOfLine(const QImage& picture, const QRect& line, const QList<QRect>& lines)
{
    QList<LineImage> images;
    const QList<LinePart> parts = partsOf(picture, line & picture.rect());
    for (qsizetype index = 0; index < parts.size(); ++index) {
        addImages(picture, parts.at(index), index == 0, index + 1 == parts.size(), lines, images);
    }
    return images;
}

} // namespace mossbank
