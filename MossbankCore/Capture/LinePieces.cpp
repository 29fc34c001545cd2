// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/LinePieces.h"

#include "MossbankCore/Capture/ColourSteps.h"

#include <array>
#include <utility>

namespace mossbank {

namespace {

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

/// Whether a clear gap lies between one band and the next, as between lines and not within figures
/// such as a 2 and a sign of per cent.
bool areClearlyApart(const std::vector<Band>& bands)
{
    const int lowest = std::ranges::min(bands, {}, &Band::height).height();
    return std::ranges::adjacent_find(bands, [&](const Band& upper, const Band& lower) {
               return 4 * (lower.start - upper.end) < lowest;
           }) == bands.end();
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
    constexpr int kLarge = 40;
    const bool isLetter = piece.height() > 2 * piece.width() ||
                          (piece.height() >= kLarge && 4 * piece.width() <= 5 * piece.height());
    const bool mayBeSeveral = piece.height() >= kLowestPair && !isLetter;
    for (int y = piece.top; y < piece.bottom && mayBeSeveral; ++y)
        counts.push_back(steps.count(y, piece.left, piece.right));
    // In a few letters the number of steps tells little of where lines end.
    const bool isOfFewLetters = piece.width() < 3 * piece.height();
    for (; attempt < kFew.size() && !counts.empty(); ++attempt) {
        const std::vector<Band> bands = bandsOf(counts, kFew.at(attempt));
        if (bands.size() < 2 || (attempt > 0 && !areAlike(bands)) ||
            (attempt > 0 && isOfFewLetters && !areClearlyApart(bands)))
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

} // namespace

std::vector<Box> linePieces(const ColourSteps& steps)
{
    std::vector<Box> pieces;
    for (const Box& piece : piecesOf(steps))
        addLinesOf(steps, piece, pieces);
    return pieces;
}

} // namespace mossbank
