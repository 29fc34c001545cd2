// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <cstdio>

namespace mossbank {

/// What a check that finds the same screen may take.
struct CheckBounds {
    /// Of this process's processor time, by a whole check.
    static constexpr double kProcessorMilliseconds = 20;
    /// By the fingerprint of a picture of 2048x1152.
    static constexpr double kMakeMilliseconds = 4;
    /// By the same, beside a plain read of the picture's bytes from memory.
    static constexpr double kMakeToPlainRead = 1.5;
    /// By one comparison of 36,864 cells.
    static constexpr double kComparisonMicroseconds = 10;
    /// From the hundredth check to the last, of memory that stays.
    static constexpr double kGrowthMegabytes = 2;
};

/// What the program may take that is left running.
struct ProgramBounds {
    /// From the start of its process until it can be used: the library is open and its listing
    /// answered.
    static constexpr double kReadyMilliseconds = 300;
    /// Of memory that is its own alone, without a window.
    static constexpr double kOwnMegabytes = 60;
};

/// What the main window may take, with a day of 20,000 screenshots in it.
struct WindowBounds {
    /// From the wish to open it until the list is painted.
    static constexpr double kPaintedMilliseconds = 600;
    /// By any frame while the strip is scrolled, and by all but a few of them.
    static constexpr double kFrameMilliseconds = 50;
    static constexpr double kUsualFrameMilliseconds = 33;
    static constexpr double kLongerFrames = 0.05;
    /// Resident with the window open, and above what it was before once it is closed.
    static constexpr double kOpenMegabytes = 350;
    static constexpr double kLeftMegabytes = 30;
};

/// Says of each figure that exceeds its bound which it is, and remembers that one did.
class Bounds {
public:
    void hold(const QString& what, double figure, double bound, const QString& unit)
    {
        // Written so that a figure that is no number holds none.
        if (figure <= bound)
            return;
        m_areHeld = false;
        std::fprintf(stderr, "mossbank-bench: bound exceeded: %s: %.3f %s, at most %g\n",
                     qPrintable(what), figure, qPrintable(unit), bound);
    }

    int exitStatus() const { return m_areHeld ? 0 : 1; }

private:
    bool m_areHeld = true;
};

} // namespace mossbank
