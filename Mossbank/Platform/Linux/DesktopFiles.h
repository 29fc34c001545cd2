// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Application.h"

#include <QString>

#include <vector>

namespace mossbank {

/// What the desktop file of an installed application says of it.
struct DesktopFile {
    Application application;
    /// The class of its windows. Empty when it says none.
    QString windowClass;
    /// The path of what it runs, links followed. Empty when there is no such file.
    QString executable;
    /// The name of its icon in an icon theme, or the path of a picture. Empty when it has none.
    QString icon;
    /// Whether menus leave it out.
    bool isHidden = false;
    /// Whether it has no window but a terminal's.
    bool runsInTerminal = false;
};

/// Those of every installed application, those that users see first. One of the user's own stands
/// in place of the system's.
///
/// Threading: any thread.
/// Errors: none; a file that cannot be read is left out.
std::vector<DesktopFile> readDesktopFiles();

} // namespace mossbank
