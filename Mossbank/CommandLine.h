// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Views/Snapshot/SnapshotOptions.h"

namespace mossbank {

struct CommandLine {
    /// The desktop starts the program, and not the user.
    bool isAtLogin = false;
    /// The one that runs is about to end for this one.
    bool isRelaunched = false;
    /// The sample library, and the picture of a window.
    SnapshotOptions snapshot;
};

/// What the program was started with. Ends it where that is wrong, or asks for help or the version.
/// Once there is an application object.
CommandLine parseCommandLine();

/// Whether the arguments, as they come, ask for a run that needs no screen to be seen, and Qt is
/// told where else to have its windows.
bool runsWithoutScreen(int argc, char** argv);

} // namespace mossbank
