// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/DesktopSettings.h"

#include <utility>

namespace mossbank {

/// A desktop that tells nothing of what its user has chosen.
class NullDesktopSettings final : public DesktopSettings {
public:
    explicit NullDesktopSettings(QString reason)
        : m_reason(std::move(reason))
    {
    }

    Availability availability() const override { return Availability::missing(m_reason); }
    ColourScheme colourScheme() const override { return ColourScheme::NoPreference; }
    bool reducesMotion() const override { return false; }

private:
    QString m_reason;
};

} // namespace mossbank
