// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/TrayHost.h"

namespace mossbank {

/// A desktop whose panel comes and goes when the test says.
class FakeTrayHost final : public TrayHost {
public:
    Availability availability() const override
    {
        return m_isThere ? Availability()
                         : Availability::missing(QStringLiteral("The panel is not there."));
    }

    void setThere(bool isThere)
    {
        if (m_isThere == isThere)
            return;
        m_isThere = isThere;
        Q_EMIT availabilityChanged();
    }

private:
    bool m_isThere = false;
};

} // namespace mossbank
