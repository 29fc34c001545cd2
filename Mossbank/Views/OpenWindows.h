// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace mossbank {

/// What of this program's windows the user takes for windows: not the menu of its icon in the tray,
/// nor that icon while no tray has taken it in, which are some to Qt.
///
/// Threading: the main thread.
class OpenWindows {
public:
    OpenWindows() = delete;

    /// Also one that is minimised.
    static bool areAny();
    static void bringToFront();
};

} // namespace mossbank
