// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/ApplicationCatalog.h"
#include "Mossbank/Platform/Linux/X11Owners.h"

#include <QtGlobal>

namespace mossbank {

/// What this program's own windows are known by.
struct OwnProgram {
    qint64 process = 0;
    QString bundleID;
    /// Empty: it counts for nothing.
    QString executable = {};
};

/// The application of an owner. This program's process is this program, whatever its windows say.
/// So is whoever runs from the same executable or says so itself: from a server elsewhere the
/// process is not told, and two of this program may run.
/// The identity is empty when nothing is known.
Application applicationOf(const X11Owner& owner, ApplicationCatalog& catalog,
                          const OwnProgram& own);

} // namespace mossbank
