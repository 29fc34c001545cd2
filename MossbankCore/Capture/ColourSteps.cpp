// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/ColourSteps.h"

#include <numeric>

namespace mossbank {

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
    removeStraightEdges();
}

int ColourSteps::count(int y, int from, int to) const
{
    const auto row = m_steps.begin() + static_cast<std::ptrdiff_t>(index(0, y));
    return std::accumulate(row + from, row + std::min(to, m_width), 0);
}

void ColourSteps::removeStraightEdges()
{
    // Taller than the stem of any letter.
    constexpr int kTallest = 64;
    // So many rows may lie between: where a picture behind a window happens to have its colour.
    // Between the stems of one line and the next are more.
    constexpr int kBreak = 2;
    struct Edge {
        int start = 0;
        int end = 0; // left out
    };
    // Row by row, for the memory's sake: how far the edge in each column has come.
    std::vector<Edge> edges(static_cast<std::size_t>(m_width));
    const auto finish = [&](int x, const Edge& edge) {
        for (int y = edge.start; y < edge.end && edge.end - edge.start > kTallest; ++y)
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
