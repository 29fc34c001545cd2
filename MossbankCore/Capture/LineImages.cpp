// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/LineImages.h"

#include "MossbankCore/Capture/ColourSteps.h"
#include "MossbankCore/Capture/LineBackground.h"

#include <algorithm>
#include <vector>

namespace mossbank {

namespace {

/// What is no further from the background is none of the letters'.
constexpr int kInk = 14;
/// What is at least so far is one for sure.
constexpr int kFullInk = 28;
/// The least contrast that is stretched to black; fainter is a shadow.
constexpr int kFaintest = 40;
constexpr int kLowestLetter = 5;

/// How far each pixel of a part of a line, and of what is just around it, is from its background.
class Ink {
public:
    Ink(const QImage& picture, const LinePart& part, const QRect& around)
        : m_around(around)
        , m_part(part.area.translated(-around.topLeft()))
        , m_values(static_cast<std::size_t>(around.width()) *
                   static_cast<std::size_t>(around.height()))
    {
        const std::vector<QRgb> backgrounds =
            backgroundsOf(picture, part, around.left(), around.left() + around.width());
        for (int y = 0; y < height(); ++y) {
            const QRgb* const row = pixelsOf(picture, around.top() + y) + around.left();
            for (int x = 0; x < width(); ++x) {
                const QRgb background = backgrounds[static_cast<std::size_t>(x)];
                at(x, y) = distance(row[x], background);
                m_isLighter.push_back(qGray(row[x]) > qGray(background));
            }
        }
        m_walls.assign(static_cast<std::size_t>(width()), false);
        m_isCut = {.left = around.left() == 0,
                   .top = around.top() == 0,
                   .right = around.right() + 1 == picture.width(),
                   .bottom = around.bottom() + 1 == picture.height()};
    }

    int width() const { return m_around.width(); }
    int height() const { return m_around.height(); }
    int& at(int x, int y)
    {
        return m_values[static_cast<std::size_t>(y) * static_cast<std::size_t>(width()) +
                        static_cast<std::size_t>(x)];
    }
    int at(int x, int y) const { return const_cast<Ink*>(this)->at(x, y); }
    bool isLighter(int x, int y) const
    {
        return m_isLighter[static_cast<std::size_t>(y) * static_cast<std::size_t>(width()) +
                           static_cast<std::size_t>(x)];
    }
    bool isWall(int x) const { return m_walls[static_cast<std::size_t>(x)]; }

    /// Removes lone vertical strokes that are longer than the line is high, and remembers where
    /// they were: borders of cells, which a recogniser would take for letters.
    void removeWalls()
    {
        constexpr int kThickest = 2;
        for (int x = 0; x < width(); ++x) {
            int end = x;
            while (end < width() && isThrough(end))
                ++end;
            const int thickness = end - x;
            if (thickness > 0 && thickness <= kThickest && isEmpty(x - 2) && isEmpty(end + 1)) {
                for (int column = x; column < end; ++column) {
                    m_walls[static_cast<std::size_t>(column)] = true;
                    for (int y = 0; y < height(); ++y)
                        at(column, y) = 0;
                }
            }
            x = std::max(x, end);
        }
    }

    /// Removes what belongs to lines above and below.
    void removeOthers(const QList<QRect>& lines)
    {
        const QRect part = m_part.translated(m_around.topLeft());
        for (const QRect& other : lines) {
            const QRect common = other & m_around;
            const bool isAbove = other.bottom() + 1 <= part.top() + part.height() / 3;
            const bool isBelow = other.top() >= part.top() + part.height() - part.height() / 3;
            if (common.isEmpty() || (!isAbove && !isBelow))
                continue;
            for (int y = common.top(); y <= common.bottom(); ++y) {
                if ((isAbove && y >= part.top()) || (isBelow && y <= part.bottom()))
                    continue;
                for (int x = common.left(); x <= common.right(); ++x)
                    at(x - m_around.left(), y - m_around.top()) = 0;
            }
        }
    }

    /// Removes what touches the border, as far as it is on the same side of the background, lighter
    /// or darker: the corner of a dark badge may touch a white letter. Around a line is room enough
    /// for all of its letters, so it is an edge of a button, the corner of a badge, the end of
    /// something else. Where the picture ends there is no such room, and a letter may reach up to
    /// it.
    void removeWhatTouchesTheBorder()
    {
        std::vector<Run> taken;
        const auto take = [&](int x, int y) {
            if (at(x, y) <= kInk)
                return;
            const Run run = runAt(x, y);
            std::fill_n(&at(run.from, y), run.width(), 0);
            taken.push_back(run);
        };
        for (int x = 0; x < width(); ++x) {
            if (!m_isCut.top)
                take(x, 0);
            if (!m_isCut.bottom)
                take(x, height() - 1);
        }
        for (int y = 0; y < height(); ++y) {
            if (!m_isCut.left)
                take(0, y);
            if (!m_isCut.right)
                take(width() - 1, y);
        }
        while (!taken.empty()) {
            const Run run = taken.back();
            taken.pop_back();
            // Not across corners: there a badge and a letter may meet by their points.
            for (const int y : {run.y - 1, run.y + 1}) {
                for (int x = run.from; x < run.to && y >= 0 && y < height(); ++x) {
                    if (isLighter(x, y) == run.isLighter && at(x, y) > kInk &&
                        !standsOn(runAt(x, y), run))
                        take(x, y);
                }
            }
        }
    }

    bool hasLetters(int x) const
    {
        for (int y = 0; y < height(); ++y) {
            if (at(x, y) > kFullInk)
                return true;
        }
        return false;
    }

    /// The rows with letters between two columns, `from` included and `to` not.
    QRect lettersWithin(int from, int to) const
    {
        int top = height();
        int bottom = -1;
        for (int y = 0; y < height(); ++y) {
            for (int x = from; x < to; ++x) {
                if (at(x, y) > kFullInk) {
                    top = std::min(top, y);
                    bottom = y;
                }
            }
        }
        return {from, top, to - from, bottom - top + 1};
    }

    /// The contrast that nearly all of the letters between two columns keep below.
    int contrast(int from, int to) const
    {
        constexpr double kNearlyAll = 0.96;
        std::vector<int> values;
        for (int y = 0; y < height(); ++y) {
            for (int x = from; x < to; ++x) {
                if (at(x, y) > kInk)
                    values.push_back(at(x, y));
            }
        }
        if (values.empty())
            return kFaintest;
        const auto place =
            std::min(values.size() - 1,
                     static_cast<std::size_t>(static_cast<double>(values.size()) * kNearlyAll));
        std::ranges::nth_element(values, values.begin() + static_cast<std::ptrdiff_t>(place));
        return std::max(kFaintest, values[place]);
    }

private:
    /// Ink side by side in a row on one side of the background.
    struct Run {
        int from = 0;
        int to = 0; // left out
        int y = 0;
        bool isLighter = false;

        int width() const { return to - from; }
    };

    Run runAt(int x, int y) const
    {
        const bool isThisLighter = isLighter(x, y);
        const auto isOfIt = [&](int column) {
            return at(column, y) > kInk && isLighter(column, y) == isThisLighter;
        };
        Run run = {.from = x, .to = x + 1, .y = y, .isLighter = isThisLighter};
        while (run.from > 0 && isOfIt(run.from - 1))
            --run.from;
        while (run.to < width() && isOfIt(run.to))
            ++run.to;
        return run;
    }

    /// Whether a run is the foot or the head of a letter that meets what lies around a badge or a
    /// row: narrow on something wide that goes from end to end. What ends before is a frame or part
    /// of an icon, and what stands on it is, too; so a letter at a rounded corner is lost.
    bool standsOn(const Run& letter, const Run& ground) const
    {
        const bool isAtBorder = letter.from == 0 || letter.to == width();
        const bool isNarrow =
            10 * letter.width() <= 6 * m_part.height() && 2 * letter.width() <= ground.width();
        const bool isAround = ground.from == 0 && ground.to == width();
        return !isAtBorder && isNarrow && isAround;
    }

    bool isThrough(int x) const
    {
        for (int y = 0; y < height(); ++y) {
            if (at(x, y) <= kInk)
                return false;
        }
        return true;
    }
    /// Whether the line has nothing there.
    bool isEmpty(int x) const
    {
        if (x < 0 || x >= width())
            return true;
        for (int y = m_part.top(); y <= m_part.bottom(); ++y) {
            if (at(x, y) > kInk)
                return false;
        }
        return true;
    }

    /// Where what is around ends with the picture.
    struct Sides {
        bool left = false;
        bool top = false;
        bool right = false;
        bool bottom = false;
    };

    QRect m_around;
    QRect m_part; // within m_around
    Sides m_isCut;
    std::vector<int> m_values;
    std::vector<bool> m_isLighter;
    std::vector<bool> m_walls;
};

struct Columns {
    int from = 0;
    int to = 0;
};

/// The stretches of columns with letters, no gap within them wider than `gap` or walled.
std::vector<Columns> stretches(const Ink& ink, const std::vector<bool>& hasLetters, int gap)
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

/// Letters dark on white, each word stretched by itself to black.
QImage stretched(const Ink& ink, const std::vector<bool>& hasLetters)
{
    constexpr int kMargin = 2;
    constexpr int kWhite = 255;
    QImage image(ink.width(), ink.height(), QImage::Format_Grayscale8);
    image.fill(kWhite);
    for (const Columns& word : stretches(ink, hasLetters, std::max(3, ink.height() / 8))) {
        const int from = std::max(0, word.from - kMargin);
        const int to = std::min(ink.width(), word.to + kMargin);
        const int contrast = ink.contrast(from, to);
        for (int y = 0; y < ink.height(); ++y) {
            uchar* const row = image.scanLine(y);
            for (int x = from; x < to; ++x) {
                const int dark = std::min(kWhite, ink.at(x, y) * kWhite / contrast);
                row[x] = static_cast<uchar>(std::min<int>(row[x], kWhite - dark));
            }
        }
    }
    return image;
}

void addImages(const QImage& picture, const LinePart& part, bool isFirst, bool isLast,
               const QList<QRect>& lines, QList<QImage>& images)
{
    constexpr int kBeside = 4;
    constexpr int kMargin = 3;
    const int above = std::max(3, part.area.height() / 5);
    const QRect around =
        part.area.adjusted(isFirst ? -kBeside : 0, -above, isLast ? kBeside : 0, above) &
        picture.rect();
    Ink ink(picture, part, around);
    ink.removeWalls();
    ink.removeOthers(lines);
    ink.removeWhatTouchesTheBorder();
    std::vector<bool> hasLetters;
    for (int x = 0; x < ink.width(); ++x)
        hasLetters.push_back(ink.hasLetters(x));
    const QImage whole = stretched(ink, hasLetters);
    for (const Columns& columns : stretches(ink, hasLetters, part.area.height() + 2)) {
        const int from = std::max(0, columns.from - kMargin);
        const int to = std::min(ink.width(), columns.to + kMargin);
        const QRect letters = ink.lettersWithin(from, to);
        if (letters.height() >= kLowestLetter)
            images.append(whole.copy(letters.adjusted(0, -2, 0, 2) & whole.rect()));
    }
}

} // namespace

QList<QImage> imagesOfLine(const QImage& picture, const QRect& line, const QList<QRect>& lines)
{
    QList<QImage> images;
    const QList<LinePart> parts = partsOf(picture, line & picture.rect());
    for (qsizetype index = 0; index < parts.size(); ++index) {
        addImages(picture, parts.at(index), index == 0, index + 1 == parts.size(), lines, images);
    }
    return images;
}

} // namespace mossbank
