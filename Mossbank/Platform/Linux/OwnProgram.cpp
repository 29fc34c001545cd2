// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/OwnProgram.h"

using namespace Qt::StringLiterals;

namespace mossbank {

Application applicationOf(const X11Owner& owner, ApplicationCatalog& catalog, const OwnProgram& own)
{
    if (owner.process != own.process)
        return catalog.application(owner.windowClass, owner.process);
    return catalog.installed(own.bundleID)
        .value_or(Application{.bundleID = own.bundleID, .name = u"Mossbank"_s});
}

} // namespace mossbank
