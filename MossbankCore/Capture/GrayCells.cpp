// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/GrayCells.h"

#include <QImage>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

// The loop over every pixel, also for processors of the last ten years, chosen at the start.
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) &&                             \
    !defined(__SANITIZE_ADDRESS__)
#define MOSSBANK_WIDEST_REGISTERS __attribute__((target_clones("avx2", "default")))
#else
#define MOSSBANK_WIDEST_REGISTERS
#endif

namespace mossbank {

namespace {

// What each colour adds to the gray, of 32 in all: green is brighter to the eye than red, and red
// than blue.
constexpr std::uint32_t kRed = 11;
constexpr std::uint32_t kGreen = 16;
constexpr std::uint32_t kBlue = 5;
constexpr double kGray = kRed + kGreen + kBlue;

// Red and blue are summed in one number, sixteen bits each, and green where it stands.
constexpr std::uint32_t kRedAndBlue = 0x00FF00FF;
constexpr std::uint32_t kGreenAlone = 0x0000FF00;
/// So many rows are summed at once: those of a cell on most screens.
constexpr std::size_t kRows = 8;
/// A line of sums fits into 32 bits up to this, and no screen has more.
constexpr int kLongestSide = 65'535;

/// The pixels of a side of the picture that are of one of `cells` cells: every pixel is of one,
/// and a cell that is smaller than a pixel takes the one it lies on.
struct Span {
    Span(std::size_t cell, std::size_t length, std::size_t cells)
        : begin(cell * length / cells)
        , end(std::max((cell + 1) * length / cells, begin + 1))
    {
    }
    double length() const { return static_cast<double>(end - begin); }

    std::size_t begin;
    std::size_t end;
};

/// Has the processor fetch a place of memory while it goes on.
inline void fetchAhead(const void* place)
{
#ifdef __GNUC__
    constexpr int kToRead = 0;
    constexpr int kPastTheFirstCache = 2; // there it would push out what is summed now
    __builtin_prefetch(place, kToRead, kPastTheFirstCache);
#else
    static_cast<void>(place);
#endif
}

/// As many columns of pixels as memory is fetched at a time: 64 bytes.
constexpr std::size_t kFetched = 16;

/// The gray of one column of pixels, summed over some lines.
template <std::size_t... kLine>
inline std::uint32_t sumOf(const std::uint32_t* const* lines, std::size_t column)
{
    const std::uint32_t redAndBlue = ((lines[kLine][column] & kRedAndBlue) + ...);
    const std::uint32_t green = ((lines[kLine][column] & kGreenAlone) + ...);
    return kRed * (redAndBlue >> 16U) + kGreen * (green >> 8U) + kBlue * (redAndBlue & 0xFFFFU);
}

template <std::size_t... kLine>
inline void sumDown(std::uint32_t* grays, const std::uint32_t* const* lines, std::size_t width,
                    std::size_t ahead, std::index_sequence<kLine...>)
{
    std::size_t column = 0;
    while (column + kFetched <= width) {
        (fetchAhead(lines[kLine] + ahead + column), ...);
        for (const std::size_t end = column + kFetched; column < end; ++column)
            grays[column] = sumOf<kLine...>(lines, column);
    }
    for (; column < width; ++column)
        grays[column] = sumOf<kLine...>(lines, column);
}

/// The grays of each column of pixels, summed over 1 to kRows lines. The colours are kept apart
/// until each has its sum; all of it stays in registers, several columns side by side. What lies
/// `ahead` pixels on is summed next: several lines at once are more than a processor foresees by
/// itself, and it would wait for each.
MOSSBANK_WIDEST_REGISTERS
void sumDown(std::uint32_t* grays, const std::uint32_t* const* lines, std::size_t count,
             std::size_t width, std::size_t ahead)
{
    switch (count) {
    case 1:
        return sumDown(grays, lines, width, ahead, std::make_index_sequence<1>());
    case 2:
        return sumDown(grays, lines, width, ahead, std::make_index_sequence<2>());
    case 3:
        return sumDown(grays, lines, width, ahead, std::make_index_sequence<3>());
    case 4:
        return sumDown(grays, lines, width, ahead, std::make_index_sequence<4>());
    case 5:
        return sumDown(grays, lines, width, ahead, std::make_index_sequence<5>());
    case 6:
        return sumDown(grays, lines, width, ahead, std::make_index_sequence<6>());
    case 7:
        return sumDown(grays, lines, width, ahead, std::make_index_sequence<7>());
    default:
        return sumDown(grays, lines, width, ahead, std::make_index_sequence<kRows>());
    }
}

/// Makes the cells, one row of them after the other.
class CellRows {
public:
    CellRows(const QImage& image, std::size_t cells)
        : m_image(image)
        , m_width(static_cast<std::size_t>(image.width()))
        , m_grays(m_width)
        , m_sums(cells)
    {
        m_cells.reserve(cells);
        m_shares.reserve(cells);
        for (std::size_t cell = 0; cell < cells; ++cell) {
            m_cells.emplace_back(cell, m_width, cells);
            m_shares.push_back(1 / m_cells.back().length());
        }
    }

    void write(const Span& rows, std::uint8_t* cells)
    {
        std::ranges::fill(m_sums, 0);
        for (std::size_t row = rows.begin; row < rows.end; row += kRows)
            add(row, std::min(kRows, rows.end - row));
        const double share = 1 / (kGray * rows.length());
        constexpr double kHalf = 0.5;
        for (std::size_t cell = 0; cell < m_cells.size(); ++cell)
            cells[cell] = static_cast<std::uint8_t>(m_sums[cell] * share * m_shares[cell] + kHalf);
    }

private:
    void add(std::size_t row, std::size_t count)
    {
        const std::uint32_t* lines[kRows] = {};
        for (std::size_t line = 0; line < count; ++line)
            lines[line] = reinterpret_cast<const std::uint32_t*>(
                m_image.constScanLine(static_cast<int>(row + line)));
        // Below the last lines there is nothing to fetch.
        const bool isMore = row + 2 * count <= static_cast<std::size_t>(m_image.height());
        const auto line = static_cast<std::size_t>(m_image.bytesPerLine()) / sizeof(std::uint32_t);
        sumDown(m_grays.data(), lines, count, m_width, isMore ? count * line : 0);
        for (std::size_t cell = 0; cell < m_cells.size(); ++cell)
            m_sums[cell] += sumAcross(m_cells[cell]);
    }

    std::uint32_t sumAcross(const Span& columns) const
    {
        std::uint32_t sum = 0;
        const std::uint32_t* const grays = m_grays.data();
        for (std::size_t column = columns.begin; column < columns.end; ++column)
            sum += grays[column];
        return sum;
    }

    const QImage& m_image;
    std::size_t m_width;
    std::vector<std::uint32_t> m_grays;
    std::vector<Span> m_cells;
    /// The share of each of its columns in a cell.
    std::vector<double> m_shares;
    /// The grays of each cell so far: whole numbers, far below where a double would round them.
    std::vector<double> m_sums;
};

} // namespace

std::optional<Fingerprint> grayCells(const QImage& image, int size)
{
    // More cells than pixels of any screen tell nothing, and would not fit into memory.
    constexpr int kMostCells = 8192;
    if (image.isNull() || std::max(image.width(), image.height()) > kLongestSide ||
        size > kMostCells)
        return std::nullopt;
    const auto cells = static_cast<std::size_t>(size);
    CellRows rows(image, cells);
    Fingerprint fingerprint(cells * cells);
    for (std::size_t cell = 0; cell < cells; ++cell)
        rows.write(Span(cell, static_cast<std::size_t>(image.height()), cells),
                   fingerprint.data() + cell * cells);
    return fingerprint;
}

} // namespace mossbank
