// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/ColourSteps.h"

#include <numeric>

namespace mossbank {

namespace {

/// An edge that goes straight down.
struct Edge {
    int start = 0;
    int end = 0; // left out

    int height() const { return end - start; }
};

/// A stroke in a row: how thick it is that begins beside a step and goes on to the right (`way` 1)
/// or to the left (-1), and its colour. None when what is behind it is not what is before it, as
/// beside a panel, or when that is thinner than a stroke may be, as between two frames.
class Stroke {
public:
    Stroke(const QRgb* row, int width, int x, int way)
        : m_row(row)
        , m_width(width)
        , m_inside(way > 0 ? x + 1 : x)
        , m_way(way)
        , m_ink(colour(1))
    {
    }

    QRgb ink() const { return m_ink; }

    /// 0 when it is none, or not from `least` to `most` thick.
    int thickness(int least, int most) const
    {
        // The pixels in which a letter's edge is smoothed.
        constexpr int kSmooth = 2;
        const QRgb before = colour(-kSmooth);
        int wide = 2;
        while (wide <= most && isAlike(colour(wide), m_ink))
            ++wide;
        // What ends with the picture may go on.
        const int behind = m_inside + (wide + kSmooth) * m_way;
        const bool isStroke = behind >= 0 && behind < m_width && wide >= least && wide <= most &&
                              !isAlike(before, m_ink) && isAlike(colour(wide + kSmooth), before);
        for (int away = kSmooth; isStroke && away < kSmooth + least; ++away) {
            if (!isAlike(colour(-away), before))
                return 0;
        }
        return isStroke ? wide : 0;
    }

    static bool isAlike(QRgb one, QRgb other)
    {
        constexpr int kSame = 24;
        return distance(one, other) <= kSame;
    }

private:
    /// Of a pixel so far on from the step. That of the last where the picture ends.
    QRgb colour(int away) const
    {
        return m_row[std::clamp(m_inside + away * m_way, 0, m_width - 1)];
    }

    const QRgb* m_row;
    int m_width;
    int m_inside;
    int m_way;
    QRgb m_ink;
};

/// What of each row of an edge is a stroke that begins there, when it is that of a letter's stem:
/// for most of its rows a stroke of one colour, neither as thin as a frame nor as wide as a panel.
/// Nothing when it is not.
std::vector<int> stemAt(const QImage& picture, int x, const Edge& edge, int way)
{
    // Of the height of the letter.
    constexpr int kThinnest = 16;
    constexpr int kThickest = 3;
    constexpr double kLeast = 0.4;
    const int least = (edge.height() + kThinnest - 1) / kThinnest;
    const int most = edge.height() / kThickest;
    const auto strokeAt = [&](int y) {
        return Stroke(pixelsOf(picture, y), picture.width(), x, way);
    };
    const QRgb ink = strokeAt((edge.start + edge.end) / 2).ink();
    std::vector<int> strokes;
    for (int y = edge.start; y < edge.end; ++y) {
        const Stroke stroke = strokeAt(y);
        strokes.push_back(Stroke::isAlike(stroke.ink(), ink) ? stroke.thickness(least, most) : 0);
    }
    const auto none = std::ranges::count(strokes, 0);
    const auto found = static_cast<double>(strokes.size()) - static_cast<double>(none);
    return found >= kLeast * edge.height() ? strokes : std::vector<int>();
}

} // namespace

ColourSteps::ColourSteps(const QImage& picture)
    : m_width(picture.width())
    , m_height(picture.height())
    , m_steps(static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height))
{
    // Small grey text keeps well above it between stem and background; a gradient, below.
    constexpr int kStep = 22;
    for (int y = 0; y < m_height; ++y) {
        const QRgb* const row = pixelsOf(picture, y);
        unsigned char* const steps = m_steps.data() + index(0, y);
        for (int x = 0; x + 1 < m_width; ++x)
            steps[x] = row[x] != row[x + 1] && distance(row[x], row[x + 1]) > kStep;
    }
    removeStraightEdges(picture);
}

int ColourSteps::count(int y, int from, int to) const
{
    const auto row = m_steps.begin() + static_cast<std::ptrdiff_t>(index(0, y));
    return std::accumulate(row + from, row + std::min(to, m_width), 0);
}

void ColourSteps::removeStraightEdges(const QImage& picture)
{
    // Nearly all letters are lower, and nearly all that is straight and taller is an edge.
    constexpr int kTall = 64;
    // The stem of the largest letters.
    constexpr int kTallest = 120;
    // So many rows may lie between: where a picture behind a window happens to have its colour.
    // Between the stems of one line and the next are more.
    constexpr int kBreak = 2;
    // Row by row, for the memory's sake: how far the edge in each column has come.
    std::vector<Edge> edges(static_cast<std::size_t>(m_width));
    const auto finish = [&](int x, const Edge& edge) {
        if (edge.height() <= kTall)
            return;
        bool isStem = false;
        for (const int way : {1, -1}) {
            if (edge.height() > kTallest)
                break;
            const std::vector<int> strokes = stemAt(picture, x, edge, way);
            isStem = isStem || !strokes.empty();
            for (std::size_t row = 0; row < strokes.size(); ++row) {
                for (int step = 0; step < strokes[row]; ++step) {
                    const int inside = std::clamp(x + step * way, 0, m_width - 1);
                    m_steps[index(inside, edge.start + static_cast<int>(row))] = 1;
                }
            }
        }
        for (int y = edge.start; y < edge.end && !isStem; ++y)
            m_steps[index(x, y)] = 0;
    };
    for (int y = 0; y < m_height; ++y) {
        for (int x = 0; x < m_width; ++x) {
            if (!at(x, y))
                continue;
            Edge& edge = edges[static_cast<std::size_t>(x)];
            if (y - edge.end > kBreak) {
                finish(x, edge);
                edge.start = y;
            }
            edge.end = y + 1;
        }
    }
    for (int x = 0; x < m_width; ++x)
        finish(x, edges[static_cast<std::size_t>(x)]);
}

} // namespace mossbank
