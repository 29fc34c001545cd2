// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QRect>

#include <optional>

namespace mossbank {

/// Which of several displays a window is on.
class DisplayChooser {
public:
    DisplayChooser() = delete;

    /// The index of the frame that holds the largest part of `window`, the earliest of equal
    /// ones. Absent when none holds any of it. All rectangles in the same coordinates.
    static std::optional<qsizetype> best(const QRect& window, const QList<QRect>& frames);
};

} // namespace mossbank
