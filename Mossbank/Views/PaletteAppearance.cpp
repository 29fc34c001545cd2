// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/PaletteAppearance.h"

#include <QGuiApplication>
#include <QPalette>

namespace mossbank {

namespace {

/// The other colours follow from these two.
QPalette light()
{
    const QColor colour(0xf6, 0xf5, 0xf1);
    return QPalette(colour, colour);
}

QPalette dark()
{
    const QColor colour(0x26, 0x2a, 0x25);
    return QPalette(colour, colour);
}

bool isDark(const QPalette& palette)
{
    return palette.color(QPalette::Window).lightnessF() < 0.5F;
}

} // namespace

PaletteAppearance::PaletteAppearance(const DesktopSettings& desktop)
    : m_desktop(desktop)
{
    QObject::connect(&desktop, &DesktopSettings::changed, &m_listener, [this] {
        if (m_mode == Mode::System && m_desktop.colourScheme() != m_scheme)
            followDesktop();
    });
}

void PaletteAppearance::apply(Mode mode)
{
    m_mode = mode;
    switch (mode) {
    case Mode::Light:
        QGuiApplication::setPalette(light());
        break;
    case Mode::Dark:
        QGuiApplication::setPalette(dark());
        break;
    case Mode::System:
        followDesktop();
        break;
    }
}

void PaletteAppearance::followDesktop()
{
    // Without a colour of its own the program has the desktop's.
    QGuiApplication::setPalette({});
    m_scheme = m_desktop.colourScheme();
    if (m_scheme == DesktopSettings::ColourScheme::NoPreference)
        return;
    const bool isToBeDark = m_scheme == DesktopSettings::ColourScheme::Dark;
    if (isDark(QGuiApplication::palette()) != isToBeDark)
        QGuiApplication::setPalette(isToBeDark ? dark() : light());
}

} // namespace mossbank
