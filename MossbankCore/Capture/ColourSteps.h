// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QRgb>

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace mossbank {

/// How far two colours are apart: the largest difference of a channel, 0 to 255.
inline int distance(QRgb one, QRgb other)
{
    return std::max({std::abs(qRed(one) - qRed(other)), std::abs(qGreen(one) - qGreen(other)),
                     std::abs(qBlue(one) - qBlue(other))});
}

/// A row of the pixels of a picture of 32 bits a pixel.
inline const QRgb* pixelsOf(const QImage& picture, int y)
{
    return reinterpret_cast<const QRgb*>(picture.constScanLine(y));
}

/// For each pixel whether the colour changes between it and the next of its row.
///
/// Long straight edges, which are those of windows and cells and not of letters, are left out.
/// Those of the stems of large letters are not.
///
/// Threading: a value; any thread.
class ColourSteps {
public:
    explicit ColourSteps(const QImage& picture);

    int width() const { return m_width; }
    int height() const { return m_height; }
    bool at(int x, int y) const { return m_steps[index(x, y)] != 0; }

    /// How many there are in part of a row, `from` included and `to` not.
    int count(int y, int from, int to) const;

private:
    std::size_t index(int x, int y) const
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) +
               static_cast<std::size_t>(x);
    }
    void removeStraightEdges(const QImage& picture);

    int m_width;
    int m_height;
    std::vector<unsigned char> m_steps;
};

} // namespace mossbank
