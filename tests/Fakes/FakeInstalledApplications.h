// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/InstalledApplications.h"

namespace mossbank {

/// What the test says is installed.
class FakeInstalledApplications final : public InstalledApplications {
public:
    QList<InstalledApplication> installed;

    Availability availability() const override { return {}; }
    QList<InstalledApplication> list() const override { return installed; }
};

} // namespace mossbank
