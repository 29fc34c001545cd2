// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Appearance.h"
#include "Mossbank/Ports/DesktopSettings.h"

#include <QObject>

namespace mossbank {

/// By the palette of the program, which all windows and menus take their colours from. As the
/// desktop has it, it is the palette that Qt has from the desktop, unless the desktop says light
/// where that is dark, or the other way round: Qt does not hear it from every desktop.
///
/// Threading: the main thread.
class PaletteAppearance final : public Appearance {
public:
    /// Which outlives it.
    explicit PaletteAppearance(const DesktopSettings& desktop);

    void apply(Mode mode) override;

private:
    void followDesktop();

    const DesktopSettings& m_desktop;
    Mode m_mode = Mode::System;
    /// The one that was followed last.
    DesktopSettings::ColourScheme m_scheme = DesktopSettings::ColourScheme::NoPreference;
    /// What listens to the desktop.
    QObject m_listener;
};

} // namespace mossbank
