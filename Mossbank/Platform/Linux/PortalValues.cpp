// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/PortalValues.h"

#include <QDBusVariant>

#include <optional>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

using ColourScheme = DesktopSettings::ColourScheme;

/// Of every desktop.
const QString kAppearance = u"org.freedesktop.appearance"_s;
const QString kGnome = u"org.gnome.desktop.interface"_s;
const QString kKde = u"org.kde.kdeglobals.KDE"_s;

/// A value may come in one variant or in several, by who tells it.
QVariant withoutVariants(QVariant value)
{
    while (value.typeId() == qMetaTypeId<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

/// Numbers come as numbers, or as they stand in a file.
std::optional<double> number(const QVariant& value)
{
    if (value.typeId() == QMetaType::Bool)
        return std::nullopt;
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

} // namespace

QStringList PortalValues::namespaces()
{
    return {kAppearance, kGnome, kKde};
}

void PortalValues::change(const QString& space, const QString& key, const QVariant& value)
{
    // What comes unasked is not kept for its own sake.
    if (namespaces().contains(space))
        m_all[space][key] = value;
}

QVariant PortalValues::value(const QString& space, const QString& key) const
{
    return withoutVariants(m_all.value(space).value(key));
}

ColourScheme PortalValues::colourScheme() const
{
    constexpr double kDark = 1;
    constexpr double kLight = 2;
    const auto scheme = number(value(kAppearance, u"color-scheme"_s));
    if (scheme == kDark)
        return ColourScheme::Dark;
    return scheme == kLight ? ColourScheme::Light : ColourScheme::NoPreference;
}

bool PortalValues::reducesMotion() const
{
    constexpr double kReduced = 1;
    if (const auto motion = number(value(kAppearance, u"reduced-motion"_s)))
        return motion == kReduced;
    const QVariant animations = value(kGnome, u"enable-animations"_s);
    if (animations.typeId() == QMetaType::Bool && !animations.toBool())
        return true;
    // How long they take there, as against usual. At nothing there are none.
    return number(value(kKde, u"AnimationDurationFactor"_s)) == 0.0;
}

} // namespace mossbank
