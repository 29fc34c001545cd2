// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/DesktopSettings.h"

#include <utility>

namespace mossbank {

/// A user who chooses what the test says.
class FakeDesktopSettings final : public DesktopSettings {
public:
    Availability availability() const override { return {}; }
    ColourScheme colourScheme() const override { return m_scheme; }
    bool reducesMotion() const override { return m_reducesMotion; }

    void choose(ColourScheme scheme)
    {
        if (std::exchange(m_scheme, scheme) != scheme)
            Q_EMIT changed();
    }
    void reduceMotion(bool isReduced)
    {
        if (std::exchange(m_reducesMotion, isReduced) != isReduced)
            Q_EMIT changed();
    }

private:
    ColourScheme m_scheme = ColourScheme::NoPreference;
    bool m_reducesMotion = false;
};

} // namespace mossbank
