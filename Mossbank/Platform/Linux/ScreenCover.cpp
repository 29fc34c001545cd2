// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/ScreenCover.h"

namespace mossbank {

namespace {

QRegion regionLeftOut(const QList<CoverWindow>& windows)
{
    QRegion region;
    const QMargins shadow(kShadowWidth, kShadowWidth, kShadowWidth, kShadowWidth);
    // Bottom to top, so that a menu of a menu is reached through the menu.
    for (auto window = windows.crbegin(); window != windows.crend(); ++window) {
        const bool isLeftOut =
            window->visibility == Visibility::LeftOut ||
            (window->visibility == Visibility::Unknown && region.intersects(window->frame));
        if (isLeftOut)
            region += window->frame.marginsAdded(shadow);
    }
    return region;
}

QRegion regionOwn(const QList<CoverWindow>& windows)
{
    QRegion region;
    QRegion above;
    for (const CoverWindow& window : windows) {
        if (window.visibility == Visibility::Own)
            region += QRegion(window.frame) - above;
        above += window.opaque;
    }
    return region;
}

} // namespace

QRegion regionToCover(const QList<CoverWindow>& windows)
{
    return regionLeftOut(windows) + regionOwn(windows);
}

} // namespace mossbank
