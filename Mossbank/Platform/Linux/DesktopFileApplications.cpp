// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/DesktopFileApplications.h"

#include "Mossbank/Platform/Linux/DesktopFiles.h"

namespace mossbank {

QList<InstalledApplication> DesktopFileApplications::list() const
{
    QList<InstalledApplication> applications;
    for (const DesktopFile& file : readDesktopFiles()) {
        if (!file.isHidden && !file.runsInTerminal)
            applications.append({file.application, file.icon});
    }
    return applications;
}

} // namespace mossbank
