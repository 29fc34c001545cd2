// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

#include <optional>

namespace mossbank {

/// How a selection moves along a list by the keyboard.
///
/// Threading: any thread.
class SelectionCursor {
public:
    SelectionCursor() = delete;

    /// The row `by` rows behind `from` in a list of `count`, and at an end of the list the row at
    /// that end. A selection that is lost begins with the first row. Absent for an empty list.
    static std::optional<qsizetype> move(std::optional<qsizetype> from, qsizetype by,
                                         qsizetype count);
};

} // namespace mossbank
