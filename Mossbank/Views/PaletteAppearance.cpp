// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/PaletteAppearance.h"

#include <QGuiApplication>
#include <QPalette>

namespace mossbank {

namespace {

/// The other colours follow from these two.
QPalette paletteOf(Appearance::Mode mode)
{
    const QColor light(0xf6, 0xf5, 0xf1);
    const QColor dark(0x26, 0x2a, 0x25);
    switch (mode) {
    case Appearance::Mode::Light:
        return QPalette(light, light);
    case Appearance::Mode::Dark:
        return QPalette(dark, dark);
    case Appearance::Mode::System:
        break;
    }
    // Without a colour of its own the program has the desktop's.
    return {};
}

} // namespace

void PaletteAppearance::apply(Mode mode)
{
    QGuiApplication::setPalette(paletteOf(mode));
}

} // namespace mossbank
