// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Appearance.h"

namespace mossbank {

/// By the palette of the program, which all windows and menus take their colours from.
///
/// Threading: the main thread.
class PaletteAppearance final : public Appearance {
public:
    void apply(Mode mode) override;
};

} // namespace mossbank
