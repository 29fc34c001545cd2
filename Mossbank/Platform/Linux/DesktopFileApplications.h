// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/InstalledApplications.h"

namespace mossbank {

/// What is installed, by its desktop files. What runs within a terminal is left out: its window is
/// the terminal's, by which alone it is known.
///
/// Threading: that of its port.
class DesktopFileApplications final : public InstalledApplications {
public:
    Availability availability() const override { return {}; }
    QList<InstalledApplication> list() const override;
};

} // namespace mossbank
