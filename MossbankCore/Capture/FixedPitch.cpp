// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/FixedPitch.h"

#include <QImage>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <numbers>
#include <utility>
#include <vector>

namespace mossbank {

namespace {

/// So many frequencies side by side take hardly longer than one: each step of a wave waits for the
/// one before.
constexpr std::size_t kSeveral = 8;
using Several = std::array<double, kSeveral>;

/// How much ink each column of a line has.
class Columns {
public:
    explicit Columns(const QImage& line)
    {
        constexpr int kWhite = 255;
        constexpr int kFaint = 30;     // around every letter
        constexpr double kLeast = 100; // of a dash
        m_ink.assign(static_cast<std::size_t>(line.width()), 0);
        for (int y = 0; y < line.height(); ++y) {
            const uchar* const row = line.constScanLine(y);
            for (std::size_t x = 0; x < m_ink.size(); ++x)
                m_ink[x] += std::max(0, kWhite - kFaint - row[x]);
        }
        for (std::size_t x = 0; x < m_ink.size(); ++x) {
            m_sum += m_ink[x];
            if (m_ink[x] <= kLeast)
                continue;
            m_first = m_last < 0 ? static_cast<int>(x) : m_first;
            m_last = static_cast<int>(x);
        }
    }

    /// The first and the last with part of a letter. `last` is less than 0 where there is none.
    int first() const { return m_first; }
    int last() const { return m_last; }
    int width() const { return m_last - m_first + 1; }

    /// How much of all ink swings with so many waves a pixel, 0 to 1; for several numbers at once.
    Several strengths(const Several& frequencies) const
    {
        Several turnReal;
        Several turnImaginary;
        for (std::size_t at = 0; at < kSeveral; ++at) {
            const double angle = 2 * std::numbers::pi * frequencies[at];
            turnReal[at] = std::cos(angle);
            turnImaginary[at] = std::sin(angle);
        }
        Several real;
        real.fill(1);
        Several imaginary = {};
        Several sumReal = {};
        Several sumImaginary = {};
        for (int x = m_first; x <= m_last; ++x) {
            const double ink = m_ink[static_cast<std::size_t>(x)];
            for (std::size_t at = 0; at < kSeveral; ++at) {
                sumReal[at] += ink * real[at];
                sumImaginary[at] += ink * imaginary[at];
                const double before = real[at];
                real[at] = before * turnReal[at] - imaginary[at] * turnImaginary[at];
                imaginary[at] = before * turnImaginary[at] + imaginary[at] * turnReal[at];
            }
        }
        Several found;
        for (std::size_t at = 0; at < kSeveral; ++at)
            found[at] = std::hypot(sumReal[at], sumImaginary[at]) / m_sum;
        return found;
    }

    /// How much ink there is on the borders of such cells, as a share of what is elsewhere. `most`
    /// where it is that or more.
    double onBorders(double width, double start, double most) const
    {
        double sum = 0;
        int count = 0;
        const double first = std::ceil((m_first - start + 0.5) / width);
        const double mean = m_sum / this->width();
        // More than there are, so that a sum above it is too much whatever is still to come.
        const double borders = (m_last - start) / width - first + 2;
        const double limit = most * borders * mean;
        for (double border = start + first * width; border < m_last; border += width) {
            sum += between(border - 0.5);
            ++count;
            if (sum > limit)
                return most;
        }
        return count == 0 ? 1 : std::min(most, sum / count / mean);
    }

private:
    double between(double x) const
    {
        const auto before = static_cast<int>(x);
        const double part = x - before;
        const auto ink = [&](int column) {
            const bool isThere = column >= 0 && column < static_cast<int>(m_ink.size());
            return isThere ? m_ink[static_cast<std::size_t>(column)] : 0.0;
        };
        return ink(before) * (1 - part) + ink(before + 1) * part;
    }

    std::vector<double> m_ink;
    double m_sum = 0;
    int m_first = 0;
    int m_last = -1;
};

/// The waves that stand out, the strongest first; waves a pixel.
std::vector<double> strongest(const Columns& columns, double lowest, double highest, double step)
{
    constexpr std::size_t kMost = 6;
    struct Wave {
        double strength = 0;
        double frequency = 0;
    };
    std::vector<Wave> all;
    for (double frequency = lowest; frequency <= highest;) {
        Several frequencies;
        for (double& one : frequencies)
            one = std::exchange(frequency, frequency + step);
        const Several strengths = columns.strengths(frequencies);
        for (std::size_t at = 0; at < kSeveral && frequencies[at] <= highest; ++at)
            all.push_back({strengths[at], frequencies[at]});
    }
    std::vector<Wave> peaks;
    for (std::size_t at = 1; at + 1 < all.size(); ++at) {
        if (all[at].strength >= all[at - 1].strength && all[at].strength > all[at + 1].strength)
            peaks.push_back(all[at]);
    }
    std::ranges::sort(peaks, std::greater(), &Wave::strength);
    std::vector<double> frequencies;
    for (std::size_t at = 0; at < std::min(kMost, peaks.size()); ++at)
        frequencies.push_back(peaks[at].frequency);
    return frequencies;
}

} // namespace

std::optional<FixedPitch> fixedPitchOf(const QImage& line)
{
    // Of the height with or without what reaches above and below.
    constexpr double kNarrowest = 0.28;
    constexpr double kWidest = 0.72;
    constexpr double kFewestPixels = 4.5;
    constexpr int kFewestCells = 7;
    // Letters of different widths leave at least so much on what would be the borders.
    constexpr double kMostOnBorders = 0.36;
    constexpr double kStart = 0.125; // of a pixel
    constexpr int kParts = 4;
    const Columns columns(line);
    if (columns.last() < 0)
        return {};
    // At this step the last cell of a line is off by a quarter of a cell.
    const double step = 0.25 / columns.width();
    const double narrowest = std::max(kFewestPixels, kNarrowest * line.height());
    std::optional<FixedPitch> best;
    double least = kMostOnBorders;
    for (const double frequency :
         strongest(columns, 1 / (kWidest * line.height()), 1 / narrowest, step)) {
        for (int part = -kParts; part <= kParts; ++part) {
            const double width = 1 / (frequency + part * step / kParts);
            const int count = static_cast<int>(std::lround(columns.width() / width));
            if (count < kFewestCells)
                continue;
            for (double start = columns.first() - width; start < columns.first() + width / 3;
                 start += kStart) {
                const double on = columns.onBorders(width, start, least);
                if (on >= least)
                    continue;
                least = on;
                best = {width, start,
                        static_cast<int>(std::ceil((columns.last() - start) / width))};
            }
        }
    }
    return best;
}

} // namespace mossbank
