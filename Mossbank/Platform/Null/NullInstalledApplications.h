// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/InstalledApplications.h"

#include <utility>

namespace mossbank {

/// A system that does not tell what is installed.
class NullInstalledApplications final : public InstalledApplications {
public:
    explicit NullInstalledApplications(QString reason)
        : m_reason(std::move(reason))
    {
    }

    Availability availability() const override { return Availability::missing(m_reason); }
    QList<InstalledApplication> list() const override { return {}; }

private:
    QString m_reason;
};

} // namespace mossbank
