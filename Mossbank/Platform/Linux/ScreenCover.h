// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QRect>
#include <QRegion>

namespace mossbank {

/// Whether a window may be in a picture.
enum class Visibility : quint8 {
    Shown,
    /// Of an application that must not be seen.
    LeftOut,
    /// Of this program itself.
    Own,
    /// Nobody knows whose it is.
    Unknown,
};

/// Compositors draw shadows and blurred edges around a window's frame, up to about this wide.
constexpr int kShadowWidth = 32;

struct CoverWindow {
    QRect frame;
    /// The part that hides what lies below.
    QRegion opaque;
    Visibility visibility = Visibility::Unknown;
};

/// What has to be covered of a screen with these windows, front to back: everything where a
/// window that is left out may show, with its shadow and whatever of nobody known lies over it,
/// and what can be seen of this program's own windows.
QRegion regionToCover(const QList<CoverWindow>& windows);

} // namespace mossbank
