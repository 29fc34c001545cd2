// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/LineInk.h"

#include "MossbankCore/Capture/ColourSteps.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <utility>

namespace mossbank {

namespace {

/// What is no further from the background is none of the letters'.
constexpr int kInk = 14;
/// What is at least so far is one for sure.
constexpr int kFullInk = 28;
/// The least contrast that is stretched to black; fainter is a shadow.
constexpr int kFaintest = 40;

/// How far the channels of two colours are apart.
std::array<std::uint8_t, kChannels> apart(QRgb one, QRgb other)
{
    return {static_cast<std::uint8_t>(std::abs(qRed(one) - qRed(other))),
            static_cast<std::uint8_t>(std::abs(qGreen(one) - qGreen(other))),
            static_cast<std::uint8_t>(std::abs(qBlue(one) - qBlue(other)))};
}

/// Whether a pixel of grey letters on grey would have more colour.
bool hasFringe(const std::array<std::uint8_t, kChannels>& channels)
{
    constexpr int kGrey = 24;
    const auto [least, most] = std::ranges::minmax(channels);
    return most - least > kGrey;
}

/// What nearly all of some values keep below.
int nearlyMost(std::vector<int>& values)
{
    constexpr double kNearlyAll = 0.96;
    const auto place =
        std::min(values.size() - 1,
                 static_cast<std::size_t>(static_cast<double>(values.size()) * kNearlyAll));
    std::ranges::nth_element(values, values.begin() + static_cast<std::ptrdiff_t>(place));
    return values[place];
}

} // namespace

LineInk::LineInk(const QImage& picture, const LinePart& part, const QRect& around)
    : m_around(around)
    , m_part(part.area.translated(-around.topLeft()))
    , m_values(static_cast<std::size_t>(around.width()) * static_cast<std::size_t>(around.height()))
{
    const std::vector<QRgb> backgrounds =
        backgroundsOf(picture, part, around.left(), around.left() + around.width());
    for (int y = 0; y < height(); ++y) {
        const QRgb* const row = pixelsOf(picture, around.top() + y) + around.left();
        for (int x = 0; x < width(); ++x) {
            const QRgb background = backgrounds[static_cast<std::size_t>(x)];
            at(x, y) = distance(row[x], background);
            m_channels.push_back(apart(row[x], background));
            m_isLighter.push_back(qGray(row[x]) > qGray(background));
        }
    }
    m_walls.assign(static_cast<std::size_t>(width()), false);
    m_isCut = {.left = around.left() == 0,
               .top = around.top() == 0,
               .right = around.right() + 1 == picture.width(),
               .bottom = around.bottom() + 1 == picture.height()};
}

void LineInk::removeWalls()
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

void LineInk::removeOthers(const QList<QRect>& lines)
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

void LineInk::removeWhatTouchesTheBorder()
{
    std::vector<Run> taken;
    for (int x = 0; x < width(); ++x) {
        if (!m_isCut.top)
            take(x, 0, taken);
        if (!m_isCut.bottom)
            take(x, height() - 1, taken);
    }
    for (int y = 0; y < height(); ++y) {
        if (!m_isCut.left)
            take(0, y, taken);
        if (!m_isCut.right)
            take(width() - 1, y, taken);
    }
    takeWhatTouches(std::move(taken));
}

std::array<QRect, 4> LineInk::sidesOf(const QRect& area)
{
    constexpr int kThinnest = 2;
    constexpr int kPart = 12;
    const int thick = std::max(kThinnest, area.height() / kPart);
    const QRect above(area.left(), area.top(), area.width(), thick);
    const QRect beside(area.left(), area.top(), thick, area.height());
    return {above, above.translated(0, area.height() - thick), beside,
            beside.translated(area.width() - thick, 0)};
}

void LineInk::removeFrame(int from, int to)
{
    constexpr int kLowest = 16;
    const QRect all = lettersWithin(from, to);
    if (all.height() < kLowest || all.width() < kLowest)
        return;
    const std::array<QRect, 4> sides = sidesOf(all);
    if (!std::ranges::all_of(sides, [this](const QRect& side) { return isLine(side); }))
        return;
    std::vector<Run> taken;
    for (const QRect& side : sides) {
        for (int y = side.top(); y <= side.bottom(); ++y) {
            for (int x = side.left(); x <= side.right(); ++x)
                take(x, y, taken);
        }
    }
    takeWhatTouches(std::move(taken));
}

bool LineInk::isEmptyBox(const QRect& area) const
{
    constexpr int kCorner = 3; // of which the sides' ends may be rounded off
    const QRect within = area.adjusted(kCorner, kCorner, -kCorner, -kCorner);
    for (int y = within.top(); y <= within.bottom(); ++y) {
        for (int x = within.left(); x <= within.right(); ++x) {
            if (at(x, y) > kInk)
                return false;
        }
    }
    return within.isValid() &&
           std::ranges::all_of(sidesOf(area), [this](const QRect& side) { return isLine(side); });
}

void LineInk::remove(int from, int to)
{
    for (int y = 0; y < height(); ++y)
        std::fill_n(&at(from, y), to - from, 0);
}

bool LineInk::isBlock(const QRect& letters) const
{
    constexpr double kNearlyAll = 0.92;
    int count = 0;
    for (int y = letters.top(); y <= letters.bottom(); ++y) {
        for (int x = letters.left(); x <= letters.right(); ++x)
            count += at(x, y) > kInk;
    }
    return 2 * letters.width() >= letters.height() &&
           count >= kNearlyAll * letters.width() * letters.height();
}

bool LineInk::hasLetters(int x) const
{
    for (int y = 0; y < height(); ++y) {
        if (at(x, y) > kFullInk)
            return true;
    }
    return false;
}

QRect LineInk::lettersWithin(int from, int to) const
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

int LineInk::shade(int x, int y) const
{
    const Channels& channels = channelsAt(x, y);
    return at(x, y) == 0 ? 0 : std::accumulate(channels.begin(), channels.end(), 0);
}

int LineInk::shadeOf(int channel, int x, int y) const
{
    return at(x, y) == 0 ? 0 : channelsAt(x, y)[static_cast<std::size_t>(channel)];
}

int LineInk::contrast(int from, int to, const Shade& shade) const
{
    std::vector<int> values;
    std::vector<int> shades;
    for (int y = 0; y < height(); ++y) {
        for (int x = from; x < to; ++x) {
            if (at(x, y) > kInk) {
                values.push_back(at(x, y));
                shades.push_back(shade(x, y));
            }
        }
    }
    if (values.empty())
        return kFaintest;
    const int value = nearlyMost(values);
    const int most = std::max(1, nearlyMost(shades));
    return value >= kFaintest ? most : std::max(1, most * kFaintest / value);
}

std::optional<Thirds> LineInk::thirds() const
{
    constexpr Thirds kForwards = {0, 1, 2};
    constexpr Thirds kBackwards = {2, 1, 0};
    if (std::ranges::none_of(m_channels, hasFringe))
        return {};
    std::array<int, kChannels> contrasts = {};
    for (int channel = 0; channel < kChannels; ++channel) {
        contrasts[static_cast<std::size_t>(channel)] =
            contrast(0, width(), [=, this](int x, int y) { return shadeOf(channel, x, y); });
    }
    // How much goes up and down along the rows when the thirds are in this order.
    const auto roughness = [&](const Thirds& order) {
        constexpr int kWhole = 256;
        std::int64_t sum = 0;
        for (int y = 0; y < height(); ++y) {
            int before = 0;
            for (int x = 0; x < width(); ++x) {
                for (const int channel : order) {
                    const int here = shadeOf(channel, x, y) * kWhole /
                                     contrasts[static_cast<std::size_t>(channel)];
                    sum += std::abs(here - before);
                    before = here;
                }
            }
        }
        return static_cast<double>(sum) / kWhole;
    };
    // The edges of letters go up once and down once where the order is as they were drawn, and more
    // often in the other. Coloured letters in whole pixels are as rough in both.
    constexpr double kSmoother = 0.8;
    constexpr double kFewest = 60; // of a letter or two
    const double forwards = roughness(kForwards);
    const double backwards = roughness(kBackwards);
    if (forwards + backwards < kFewest ||
        std::min(forwards, backwards) > kSmoother * std::max(forwards, backwards))
        return {};
    return forwards < backwards ? kForwards : kBackwards;
}

LineInk::Run LineInk::runAt(int x, int y) const
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

void LineInk::take(int x, int y, std::vector<Run>& taken)
{
    if (at(x, y) <= kInk)
        return;
    const Run run = runAt(x, y);
    std::fill_n(&at(run.from, y), run.width(), 0);
    taken.push_back(run);
}

void LineInk::takeWhatTouches(std::vector<Run> taken)
{
    while (!taken.empty()) {
        const Run run = taken.back();
        taken.pop_back();
        // Not across corners: there a badge and a letter may meet by their points.
        for (const int y : {run.y - 1, run.y + 1}) {
            for (int x = run.from; x < run.to && y >= 0 && y < height(); ++x) {
                if (isLighter(x, y) == run.isLighter && at(x, y) > kInk &&
                    !standsOn(runAt(x, y), run))
                    take(x, y, taken);
            }
        }
    }
}

bool LineInk::isLine(const QRect& side) const
{
    constexpr double kNearlyAll = 0.85;
    const bool isLevel = side.width() >= side.height();
    const int length = isLevel ? side.width() : side.height();
    const int thickness = isLevel ? side.height() : side.width();
    int count = 0;
    for (int along = 0; along < length; ++along) {
        bool hasInk = false;
        for (int across = 0; across < thickness && !hasInk; ++across) {
            hasInk = isLevel ? at(side.left() + along, side.top() + across) > kInk
                             : at(side.left() + across, side.top() + along) > kInk;
        }
        count += hasInk;
    }
    return count >= kNearlyAll * length;
}

bool LineInk::standsOn(const Run& letter, const Run& ground) const
{
    const bool isAtBorder = letter.from == 0 || letter.to == width();
    const bool isNarrow =
        10 * letter.width() <= 6 * m_part.height() && 2 * letter.width() <= ground.width();
    // In a table its lines part each other.
    const bool isAround = (ground.from == 0 || isWall(ground.from - 1)) &&
                          (ground.to == width() || isWall(ground.to));
    return !isAtBorder && isNarrow && isAround;
}

bool LineInk::isThrough(int x) const
{
    for (int y = 0; y < height(); ++y) {
        if (at(x, y) <= kInk)
            return false;
    }
    return true;
}

bool LineInk::isEmpty(int x) const
{
    if (x < 0 || x >= width())
        return true;
    for (int y = m_part.top(); y <= m_part.bottom(); ++y) {
        if (at(x, y) > kInk)
            return false;
    }
    return true;
}

} // namespace mossbank
