// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Capture/LineBackground.h"

#include <QImage>
#include <QList>
#include <QRect>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace mossbank {

inline constexpr int kChannels = 3;
/// The channels of a pixel in the order in which its thirds stand side by side; red, green and blue
/// are 0, 1 and 2.
using Thirds = std::array<int, kChannels>;

/// How far each pixel of a part of a line, and of what is just around it, is from its background.
///
/// Threading: one thread at a time.
class LineInk {
public:
    /// `around`: the part and what is just around it. A picture of 32 bits a pixel.
    LineInk(const QImage& picture, const LinePart& part, const QRect& around);

    int width() const { return m_around.width(); }
    int height() const { return m_around.height(); }
    int& at(int x, int y)
    {
        return m_values[static_cast<std::size_t>(y) * static_cast<std::size_t>(width()) +
                        static_cast<std::size_t>(x)];
    }
    int at(int x, int y) const { return const_cast<LineInk*>(this)->at(x, y); }
    bool isLighter(int x, int y) const
    {
        return m_isLighter[static_cast<std::size_t>(y) * static_cast<std::size_t>(width()) +
                           static_cast<std::size_t>(x)];
    }
    bool isWall(int x) const { return m_walls[static_cast<std::size_t>(x)]; }

    /// Removes lone vertical strokes that are longer than the line is high, and remembers where
    /// they were: borders of cells, which a recogniser would take for letters.
    void removeWalls();

    /// Removes what belongs to lines above and below.
    void removeOthers(const QList<QRect>& lines);

    /// Removes what touches the border, as far as it is on the same side of the background, lighter
    /// or darker: the corner of a dark badge may touch a white letter. Around a line is room enough
    /// for all of its letters, so it is an edge of a button, the corner of a badge, the end of
    /// something else. Where the picture ends there is no such room, and a letter may reach up to
    /// it.
    void removeWhatTouchesTheBorder();

    /// Removes a frame around all that is between two columns, as icons have one: four straight
    /// sides, too thin for the letter that they would be.
    void removeFrame(int from, int to);

    /// Whether four straight sides lie along the sides of a rectangle, and nothing within them.
    bool isEmptyBox(const QRect& area) const;

    /// Removes what is between two columns.
    void remove(int from, int to);

    /// Whether there is ink nearly everywhere, and more of it than a stem has: the picture on an
    /// icon, not a letter.
    bool isBlock(const QRect& letters) const;

    bool hasLetters(int x) const;
    /// The rows with letters between two columns, `from` included and `to` not.
    QRect lettersWithin(int from, int to) const;

    /// Absent where letters are drawn in whole pixels.
    std::optional<Thirds> thirds() const;
    /// How far a channel of a pixel of a letter is from the background, 0 elsewhere.
    int shadeOf(int channel, int x, int y) const;
    /// The same of all channels together. Letters drawn in thirds have fringes that only one of
    /// them is far from, and the furthest, which `at` tells, would make all strokes thick.
    int shade(int x, int y) const;

    /// Of a pixel, how dark it is to be drawn.
    using Shade = std::function<int(int, int)>;
    /// What nearly all of the letters between two columns keep below.
    int contrast(int from, int to, const Shade& shade) const;

private:
    /// Ink side by side in a row on one side of the background.
    struct Run {
        int from = 0;
        int to = 0; // left out
        int y = 0;
        bool isLighter = false;

        int width() const { return to - from; }
    };

    using Channels = std::array<std::uint8_t, kChannels>;

    const Channels& channelsAt(int x, int y) const
    {
        return m_channels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width()) +
                          static_cast<std::size_t>(x)];
    }
    Run runAt(int x, int y) const;
    /// Removes the ink there with all that is beside it in its row.
    void take(int x, int y, std::vector<Run>& taken);

    /// Removes also what goes on from there above and below.
    void takeWhatTouches(std::vector<Run> taken);

    /// The sides of a frame along those of a rectangle: above, below, on the left, on the right.
    static std::array<QRect, 4> sidesOf(const QRect& area);

    /// Whether a side of a frame goes through there from end to end.
    bool isLine(const QRect& side) const;

    /// Whether a run is the foot or the head of a letter that meets what lies around a badge or a
    /// row: narrow on something wide that goes from end to end. What ends before is a frame or part
    /// of an icon, and what stands on it is, too; so a letter at a rounded corner is lost.
    bool standsOn(const Run& letter, const Run& ground) const;

    bool isThrough(int x) const;
    /// Whether the line has nothing there.
    bool isEmpty(int x) const;

    /// Where what is around ends with the picture.
    struct Sides {
        bool left = false;
        bool top = false;
        bool right = false;
        bool bottom = false;
    };

    QRect m_around;
    QRect m_part; // within m_around
    Sides m_isCut;
    std::vector<int> m_values;
    std::vector<Channels> m_channels;
    std::vector<bool> m_isLighter;
    std::vector<bool> m_walls;
};

} // namespace mossbank
