// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/TextLineFinder.h"

#include "MossbankCore/Capture/ColourSteps.h"
#include "MossbankCore/Capture/LinePieces.h"

#include <algorithm>
#include <functional>
#include <vector>

namespace mossbank {

namespace {

/// What is lower is no letter: a dot, an accent, part of a line drawn.
constexpr int kLowestLetter = 6;
constexpr int kHighestLine = 120;

int overlap(int start, int end, int otherStart, int otherEnd)
{
    return std::min(end, otherEnd) - std::max(start, otherStart);
}

/// Whether two pieces stand on one line, the second to the right of the first or within it.
bool isOneLine(const Box& one, const Box& other)
{
    constexpr double kWordGap = 1.1; // of the height: a space of a monospaced font
    constexpr double kCommon = 0.5;
    constexpr double kHigher = 2.6;
    constexpr double kSpread = 1.7;
    const int higher = std::max(one.height(), other.height());
    const int lower = std::min(one.height(), other.height());
    const int spread = std::max(one.bottom, other.bottom) - std::min(one.top, other.top);
    // A bar beside a few lines goes with none of them, nor does the picture of who speaks.
    constexpr int kTwoLines = 24; // of small text
    const auto isBeside = [&](const Box& box) {
        const bool isBar = box.height() > 3 * box.width() && 2 * box.height() > 3 * lower;
        return isBar || (box.height() >= kTwoLines && box.height() >= 2 * lower);
    };
    // A side of a bubble beside two lines would join them: no letter reaches so far out of its own.
    const auto reachesOut = [](const Box& bar, const Box& line) {
        const int furthest = std::max(line.top - bar.top, bar.bottom - line.bottom);
        return bar.height() > 3 * bar.width() && furthest > line.height() / 2 + 1;
    };
    return !isBeside(one) && !isBeside(other) && !reachesOut(one, other) &&
           !reachesOut(other, one) && other.left - one.right <= kWordGap * higher + 2 &&
           overlap(one.top, one.bottom, other.top, other.bottom) >= kCommon * lower &&
           higher <= kHigher * lower && spread <= kSpread * higher;
}

/// Joins what stands on one line, until nothing more does.
void joinLines(std::vector<Box>& lines)
{
    constexpr int kFurthest = 200; // beyond which no gap between words is
    bool hasJoined = true;
    while (hasJoined) {
        hasJoined = false;
        std::ranges::sort(lines, {}, &Box::left);
        std::vector<bool> isGone(lines.size(), false);
        for (std::size_t first = 0; first < lines.size(); ++first) {
            for (std::size_t second = first + 1; !isGone[first] && second < lines.size();
                 ++second) {
                if (lines[second].left - lines[first].right > kFurthest)
                    break;
                if (isGone[second] || !isOneLine(lines[first], lines[second]))
                    continue;
                lines[first].include(lines[second]);
                isGone[second] = true;
                hasJoined = true;
            }
        }
        std::size_t place = 0;
        std::erase_if(lines, [&](const Box&) { return isGone[place++]; });
    }
}

/// Gives dots and accents to the line that they stand over or under.
void addMarks(const std::vector<Box>& marks, std::vector<Box>& lines)
{
    // Of the letters alone: or specks, each near the one before, would draw a line out to them.
    const std::vector<Box> letters = lines;
    for (const Box& mark : marks) {
        std::size_t nearest = letters.size();
        int least = kHighestLine;
        for (std::size_t place = 0; place < letters.size(); ++place) {
            constexpr int kBehind = 6; // a full stop after the last letter
            const Box& line = letters[place];
            const int away = std::max(0, -overlap(mark.top, mark.bottom, line.top, line.bottom));
            const bool isBeside = mark.right < line.left - 2 || mark.left > line.right + kBehind;
            const bool isTooWide =
                mark.width() >= line.width() + kGapWithinPiece || mark.width() >= 6 * line.height();
            if (isBeside || isTooWide || away > std::max(3, line.height() / 3) || away >= least)
                continue;
            nearest = place;
            least = away;
        }
        if (nearest == letters.size())
            continue;
        Box& line = lines[nearest];
        line.top = std::min(line.top, mark.top);
        line.bottom = std::max(line.bottom, mark.bottom);
        line.right = std::max(line.right, mark.right);
    }
}

/// Takes pieces that lie within a larger line into it: the upper half of a capital.
void joinNested(std::vector<Box>& lines)
{
    constexpr double kWithin = 0.7;
    constexpr double kPartly = 0.3;
    std::ranges::sort(lines, std::greater(), &Box::area);
    std::vector<Box> kept;
    for (const Box& line : lines) {
        const auto holds = [&](const Box& larger) {
            const int wide = overlap(line.left, line.right, larger.left, larger.right);
            const int high = overlap(line.top, line.bottom, larger.top, larger.bottom);
            // Of large letters also the dots, and what is left of a foot, which may lie a little
            // below the rest.
            const bool isPart = line.width() <= larger.height();
            const bool isLow = isPart && 4 * line.height() <= larger.height();
            return wide > 0 && high > 0 &&
                   static_cast<double>(wide) * high >= (isLow ? kPartly : kWithin) * line.area() &&
                   (isPart || larger.height() < 3 * line.height() + 6);
        };
        if (const auto larger = std::ranges::find_if(kept, holds); larger != kept.end())
            larger->include(line);
        else
            kept.push_back(line);
    }
    lines = std::move(kept);
}

/// The arms of the first and the last letter of a line, as of a T or an L. Such an arm has a step
/// at its end alone, too far from the stem to be a piece of the line.
class Arms {
public:
    Arms(const ColourSteps& steps, const Box& line)
        : m_steps(steps)
        , m_line(line)
        , m_third(line.height() / 3)
        , m_reach(line.height() * 6 / 10)
    {
    }

    // The step at an end may take two pixels.
    int left() const
    {
        for (int x = std::max(0, m_line.left - m_reach); x < m_line.left - 1; ++x) {
            if (isEnd(x, [&](int y) { return m_steps.count(y, x + 2, m_line.left) == 0; }))
                return x;
        }
        return m_line.left;
    }

    int right() const
    {
        const int last = std::min(m_steps.width(), m_line.right + m_reach) - 1;
        for (int x = last; x > m_line.right; --x) {
            if (isEnd(x, [&](int y) { return m_steps.count(y, m_line.right, x - 1) == 0; }))
                return x + 2;
        }
        return m_line.right;
    }

private:
    /// Whether arms end in a column: steps above or below, nothing up to the letter, and hardly any
    /// in between, where the edge of a button would have them all along.
    template <typename ReachesLetter>
    bool isEnd(int x, ReachesLetter reachesLetter) const
    {
        int outer = 0;
        int middle = 0;
        for (int y = m_line.top; y < m_line.bottom; ++y) {
            if (!m_steps.at(x, y))
                continue;
            if (!reachesLetter(y))
                return false;
            const bool isMiddle = y >= m_line.top + m_third && y < m_line.bottom - m_third;
            ++(isMiddle ? middle : outer);
        }
        // What goes on above or below is an edge.
        const auto goesOn = [&](int y) {
            return y >= 0 && y < m_steps.height() && m_steps.at(x, y);
        };
        return outer > 0 && 2 * middle <= m_third && !goesOn(m_line.top - 1) &&
               !goesOn(m_line.bottom);
    }

    const ColourSteps& m_steps;
    const Box& m_line;
    int m_third;
    int m_reach;
};

bool mayBeText(const Box& box)
{
    return box.height() <= kHighestLine && box.width() >= 4 && box.height() <= 3 * box.width();
}

} // namespace

QList<QRect> TextLineFinder::find(const QImage& picture)
{
    if (picture.format() != QImage::Format_RGB32 && picture.format() != QImage::Format_ARGB32)
        return {};
    const ColourSteps steps(picture);
    std::vector<Box> lines = linePieces(steps);
    const auto marks =
        std::ranges::partition(lines, [](const Box& box) { return box.height() >= kLowestLetter; });
    const std::vector<Box> low(marks.begin(), marks.end());
    lines.erase(marks.begin(), marks.end());
    joinLines(lines);
    addMarks(low, lines);
    joinNested(lines);
    QList<QRect> found;
    for (Box line : lines) {
        if (!mayBeText(line))
            continue;
        const Arms arms(steps, line);
        const int armLeft = arms.left();
        line.right = arms.right();
        line.left = armLeft;
        // A stem that begins or ends with the picture has a step on one side only.
        const int stem = line.height() / 4;
        const int left = line.left <= stem ? 0 : line.left;
        const int right = line.right + stem >= picture.width() ? picture.width() : line.right;
        found.append(QRect(left, line.top, right - left, line.height()));
    }
    return found;
}

} // namespace mossbank
