// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/TextLineFinder.h"

#include "MossbankCore/Capture/ColourSteps.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <vector>

namespace mossbank {

namespace {

/// The widest gap within a piece of a line, in pixels: that between two words of small text.
constexpr int kGapWithinPiece = 10;
/// What is lower is no letter: a dot, an accent, part of a line drawn.
constexpr int kLowestLetter = 6;
constexpr int kHighestLine = 120;

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

int overlap(int start, int end, int otherStart, int otherEnd)
{
    return std::min(end, otherEnd) - std::max(start, otherStart);
}

/// Sets of numbers that grow together.
class DisjointSets {
public:
    int add()
    {
        m_parents.push_back(static_cast<int>(m_parents.size()));
        return m_parents.back();
    }
    int find(int member)
    {
        while (parent(member) != member) {
            parent(member) = parent(parent(member));
            member = parent(member);
        }
        return member;
    }
    void unite(int one, int other) { parent(find(one)) = find(other); }
    int size() const { return static_cast<int>(m_parents.size()); }

private:
    int& parent(int member) { return m_parents[static_cast<std::size_t>(member)]; }

    std::vector<int> m_parents;
};

struct Run {
    int left = 0;
    int right = 0;
    int set = 0;
};

/// The stretches of a row with steps no further apart than a word is from the next.
std::vector<Run> runsOf(const ColourSteps& steps, int y)
{
    std::vector<Run> runs;
    int last = -1;
    for (int x = 0; x < steps.width(); ++x) {
        if (!steps.at(x, y))
            continue;
        if (runs.empty() || x - last > kGapWithinPiece)
            runs.push_back({.left = x});
        last = x;
        // The pixel behind the step is the letter's, too.
        runs.back().right = x + 2;
    }
    return runs;
}

/// The pieces: runs that touch from row to row.
std::vector<Box> piecesOf(const ColourSteps& steps)
{
    DisjointSets sets;
    std::vector<Box> boxes; // by set, grown at its first member
    std::vector<Run> above;
    std::vector<std::pair<int, Box>> members;
    for (int y = 0; y < steps.height(); ++y) {
        std::vector<Run> runs = runsOf(steps, y);
        auto first = above.begin();
        for (Run& run : runs) {
            run.set = sets.add();
            members.emplace_back(run.set, Box{run.left, y, run.right, y + 1});
            while (first != above.end() && first->right < run.left)
                ++first;
            for (auto touching = first; touching != above.end() && touching->left <= run.right;
                 ++touching)
                sets.unite(touching->set, run.set);
        }
        above = std::move(runs);
    }
    std::vector<int> places(static_cast<std::size_t>(sets.size()), -1);
    for (const auto& [set, box] : members) {
        int& place = places[static_cast<std::size_t>(sets.find(set))];
        if (place < 0) {
            place = static_cast<int>(boxes.size());
            boxes.push_back(box);
        } else {
            boxes[static_cast<std::size_t>(place)].include(box);
        }
    }
    return boxes;
}

/// `box` without the empty rows and columns around what it holds. Nothing when it holds nothing.
Box tightened(const ColourSteps& steps, Box box)
{
    const auto isEmpty = [&](int y) {
        return steps.count(y, box.left, box.right) == 0;
    };
    while (box.top < box.bottom && isEmpty(box.top))
        ++box.top;
    while (box.bottom > box.top && isEmpty(box.bottom - 1))
        --box.bottom;
    Box tight = {box.right, box.top, box.left, box.bottom};
    for (int y = box.top; y < box.bottom; ++y) {
        for (int x = box.left; x < std::min(box.right, steps.width()); ++x) {
            if (!steps.at(x, y))
                continue;
            tight.left = std::min(tight.left, x);
            tight.right = std::max(tight.right, x + 2);
        }
    }
    return tight;
}

/// Start and end of a band of rows within a piece, the end left out.
struct Band {
    int start = 0;
    int end = 0;

    int height() const { return end - start; }
};

/// The bands of rows of a piece that have more than a part of the steps of the fullest row near.
std::vector<Band> bandsOf(const std::vector<int>& counts, double few)
{
    constexpr int kReach = 12;
    constexpr int kLowestBand = 5;
    const int rows = static_cast<int>(counts.size());
    const auto isWithinLine = [&](int row) {
        const auto from = counts.begin() + std::max(0, row - kReach);
        const auto to = counts.begin() + std::min(rows, row + kReach + 1);
        const int most = *std::max_element(from, to);
        const int here = counts[static_cast<std::size_t>(row)];
        return here > 0 && here > few * most;
    };
    std::vector<Band> bands;
    for (int row = 0; row < rows; ++row) {
        if (!isWithinLine(row))
            continue;
        const int start = row;
        while (row < rows && isWithinLine(row))
            ++row;
        // A lower one is the dots of a line, and goes with it.
        if (row - start >= kLowestBand)
            bands.push_back({start, row});
    }
    // Nor are the dots of large letters a line beside them. A stroke drawn from a line is higher
    // than that, too, but has less in it.
    if (!bands.empty()) {
        constexpr int kFarLower = 3;
        const auto stepsOf = [&](const Band& band) {
            return std::accumulate(counts.begin() + band.start, counts.begin() + band.end, 0);
        };
        const Band highest = std::ranges::max(bands, {}, &Band::height);
        std::erase_if(bands, [&](const Band& band) {
            return kFarLower * band.height() < highest.height() &&
                   stepsOf(band) <= stepsOf(highest);
        });
    }
    return bands;
}

/// Whether they may be lines of one text: of a large letter's parts one is far higher.
bool areAlike(const std::vector<Band>& bands)
{
    constexpr double kHigher = 1.6;
    const auto [lowest, highest] = std::ranges::minmax(bands, {}, &Band::height);
    return highest.height() <= kHigher * lowest.height();
}

/// A piece of one line without what reaches far above or below it: a few specks of a picture beside
/// it may have come with it.
Box withoutOutskirts(const ColourSteps& steps, const Box& piece, const std::vector<int>& counts)
{
    constexpr double kFew = 0.14;
    const std::vector<Band> bands = bandsOf(counts, kFew);
    if (bands.size() != 1)
        return piece;
    // Room for ascenders, accents and descenders, of which there may be as few.
    const int height = bands.front().height();
    const int above = std::max(4, height * 7 / 10);
    const int below = std::max(4, height / 2);
    Box line = piece;
    line.top = std::max(piece.top, piece.top + bands.front().start - above);
    line.bottom = std::min(piece.bottom, piece.top + bands.front().end + below);
    return tightened(steps, line);
}

/// Parts a piece in which several lines touch: descenders of one and ascenders of the next leave
/// rows with fewer steps between rows with many. How few those are depends on the words, so that
/// what remains together is tried again with a higher share, for as long as the parts are alike.
void addLinesOf(const ColourSteps& steps, const Box& piece, std::vector<Box>& lines,
                std::size_t attempt = 0)
{
    constexpr int kLowestPair = 14;
    constexpr std::array kFew = {0.14, 0.24, 0.36};
    std::vector<int> counts;
    // A single large letter has rows with less in them, too: an E, at its arms.
    const bool mayBeSeveral = piece.height() >= kLowestPair && piece.height() <= 2 * piece.width();
    for (int y = piece.top; y < piece.bottom && mayBeSeveral; ++y)
        counts.push_back(steps.count(y, piece.left, piece.right));
    for (; attempt < kFew.size() && !counts.empty(); ++attempt) {
        const std::vector<Band> bands = bandsOf(counts, kFew.at(attempt));
        if (bands.size() < 2 || (attempt > 0 && !areAlike(bands)))
            continue;
        for (std::size_t band = 0; band < bands.size(); ++band) {
            const bool isLast = band + 1 == bands.size();
            const int start = band == 0 ? 0 : (bands[band - 1].end + bands[band].start) / 2;
            const int end = isLast ? piece.height() : (bands[band].end + bands[band + 1].start) / 2;
            const Box line =
                tightened(steps, {piece.left, piece.top + start, piece.right, piece.top + end});
            if (line.width() > 0)
                addLinesOf(steps, line, lines, attempt + 1);
        }
        return;
    }
    lines.push_back(counts.empty() ? piece : withoutOutskirts(steps, piece, counts));
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
    return !isBeside(one) && !isBeside(other) && other.left - one.right <= kWordGap * higher + 2 &&
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
    std::ranges::sort(lines, std::greater(), &Box::area);
    std::vector<Box> kept;
    for (const Box& line : lines) {
        const auto holds = [&](const Box& larger) {
            const int wide = overlap(line.left, line.right, larger.left, larger.right);
            const int high = overlap(line.top, line.bottom, larger.top, larger.bottom);
            return wide > 0 && high > 0 &&
                   static_cast<double>(wide) * high >= kWithin * line.area() &&
                   larger.height() < 3 * line.height() + 6;
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
    std::vector<Box> lines;
    for (const Box& piece : piecesOf(steps))
        addLinesOf(steps, piece, lines);
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
