// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/TrayHost.h"

#include <utility>

namespace mossbank {

/// A desktop without a place for icons.
class NullTrayHost final : public TrayHost {
public:
    explicit NullTrayHost(QString reason)
        : m_reason(std::move(reason))
    {
    }

    Availability availability() const override { return Availability::missing(m_reason); }

private:
    QString m_reason;
};

} // namespace mossbank
