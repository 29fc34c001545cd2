// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/FullStops.h"

#include <QPoint>

#include <algorithm>
#include <vector>

namespace mossbank {

namespace {

constexpr int kWhite = 255;
/// What is no darker is the blur of a letter nearby.
constexpr int kBlur = 40;
/// A full stop is at least so dark somewhere.
constexpr int kLeastDark = 110;
/// What belongs to a full stop is at least so dark, of its darkest.
constexpr double kOfIt = 0.4;

/// How dark a line is, and where its letters stand.
class Letters {
public:
    explicit Letters(const QImage& line)
        : m_line(line)
    {
        std::vector<int> sums;
        for (int y = 0; y < line.height(); ++y) {
            int sum = 0;
            for (int x = 0; x < line.width(); ++x)
                sum += dark(x, y);
            sums.push_back(sum);
        }
        sums.push_back(0);
        const auto hasInk = [&](int sum) {
            return sum > kBlur;
        };
        const auto top = std::ranges::find_if(sums, hasInk);
        if (top == sums.end())
            return;
        m_top = static_cast<int>(top - sums.begin());
        int mostDrop = 0;
        for (int y = line.height() / 2; y < line.height(); ++y) {
            const auto row = static_cast<std::size_t>(y);
            if (sums[row] - sums[row + 1] > mostDrop) {
                mostDrop = sums[row] - sums[row + 1];
                m_feet = y;
            }
        }
    }

    int width() const { return m_line.width(); }
    /// From the feet to the top of the highest.
    int height() const { return m_feet - m_top + 1; }
    int stopHeight() const { return std::max(2, (height() + 2) / 5); }
    int widestStop() const { return stopHeight() + 1; }

    /// The darkest of a column where a full stop would be.
    int foot(int x) const { return darkest(x, m_feet - stopHeight() + 1, m_feet); }
    /// Whether a column has nothing just above where a full stop would be.
    bool isFree(int x) const
    {
        const int above = m_feet - stopHeight() - 1; // one row is left to blur
        return darkest(x, above - height() / 3 + 1, above) <= kBlur;
    }
    /// The columns of what hangs together around the darkest of a column's foot. None where that is
    /// more than a full stop.
    FullStop stopAt(int x) const
    {
        const int least = std::max(1, static_cast<int>(kOfIt * foot(x)));
        int row = m_feet;
        while (dark(x, row) < foot(x))
            --row;
        std::vector<QPoint> found = {{x, row}};
        FullStop stop = {x, x + 1};
        int highest = row;
        int lowest = row;
        for (std::size_t at = 0; at < found.size(); ++at) {
            for (const QPoint beside : {QPoint(-1, -1), QPoint(0, -1), QPoint(1, -1), QPoint(-1, 0),
                                        QPoint(1, 0), QPoint(-1, 1), QPoint(0, 1), QPoint(1, 1)}) {
                const QPoint next = found[at] + beside;
                if (!m_line.rect().contains(next) || dark(next.x(), next.y()) < least ||
                    std::ranges::find(found, next) != found.end())
                    continue;
                found.push_back(next);
                stop = {std::min(stop.from, next.x()), std::max(stop.to, next.x() + 1)};
                highest = std::min(highest, next.y());
                lowest = std::max(lowest, next.y());
                if (stop.to - stop.from > widestStop() || lowest - highest >= stopHeight() + 1)
                    return {};
            }
        }
        return lowest == m_feet ? stop : FullStop();
    }

private:
    int dark(int x, int y) const { return kWhite - m_line.constScanLine(y)[x]; }
    int darkest(int x, int from, int to) const
    {
        int most = 0;
        if (x < 0 || x >= width())
            return most;
        for (int y = std::max(0, from); y <= std::min(to, m_line.height() - 1); ++y)
            most = std::max(most, dark(x, y));
        return most;
    }

    const QImage& m_line;
    int m_top = 0;
    int m_feet = -1;
};

} // namespace

QList<FullStop> fullStopsOf(const QImage& line)
{
    constexpr int kLowestLetters = 5;
    QList<FullStop> stops;
    const Letters letters(line);
    if (letters.height() < kLowestLetters)
        return stops;
    for (int x = 0; x < letters.width(); ++x) {
        const int peak = letters.foot(x);
        const bool isPeak = peak >= kLeastDark && letters.foot(x + 1) <= peak && letters.isFree(x);
        FullStop stop = isPeak ? letters.stopAt(x) : FullStop();
        if (stop.from == stop.to)
            continue;
        // Its own blur, as far as it is not a neighbour's.
        if (letters.isFree(stop.from - 1) &&
            letters.foot(stop.from - 2) <= letters.foot(stop.from - 1))
            --stop.from;
        if (letters.isFree(stop.to) && letters.foot(stop.to + 1) <= letters.foot(stop.to))
            ++stop.to;
        stop.from = std::max(stop.from, stops.isEmpty() ? 0 : stops.last().to);
        stop.to = std::min(stop.to, letters.width());
        if (stop.from < stop.to)
            stops.append(stop);
        x = std::max(x, stop.to - 1);
    }
    return stops;
}

QImage withRoomAround(const QList<FullStop>& stops, const QImage& line)
{
    // More would be read as a space.
    constexpr int kRoom = 1;
    QImage wider(line.width() + 2 * kRoom * static_cast<int>(stops.size()), line.height(),
                 QImage::Format_Grayscale8);
    wider.fill(kWhite);
    for (int y = 0; y < line.height(); ++y) {
        const uchar* const from = line.constScanLine(y);
        uchar* to = wider.scanLine(y);
        int done = 0;
        const auto copyUpTo = [&](int end) {
            to = std::copy(from + done, from + end, to);
            done = end;
        };
        for (const FullStop& stop : stops) {
            copyUpTo(stop.from);
            to += kRoom;
            copyUpTo(stop.to);
            to += kRoom;
        }
        copyUpTo(line.width());
    }
    return wider;
}

} // namespace mossbank
