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
};

/// The application of an owner. This program's process is this program, whatever its windows say.
/// The identity is empty when nothing is known.
Application applicationOf(const X11Owner& owner, ApplicationCatalog& catalog,
                          const OwnProgram& own);

} // namespace mossbank
