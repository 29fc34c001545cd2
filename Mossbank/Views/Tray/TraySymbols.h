// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QIcon>
#include <QImage>
#include <QList>

namespace mossbank {

/// What the icon in the tray says at a glance.
enum class TraySymbol {
    Resting,
    Recording,
    /// It records, and skips for as long as something secret may be typed.
    SecureInput,
};

/// The icons of the tray: the program's own tile, with a sign in its corner. Panels are light or
/// dark, and nothing says which; the tile and the rim of the sign stand out from both.
///
/// Threading: the main thread.
class TraySymbols {
public:
    TraySymbols() = delete;

    /// The widths that panels ask for, in pixels.
    static const QList<int>& sizes();

    /// By the recorder's state: a secret first.
    static TraySymbol symbol(bool isRecording, bool isSecureInputPaused);

    static QImage image(TraySymbol symbol, int size);
    /// In all sizes.
    static QIcon icon(TraySymbol symbol);
};

} // namespace mossbank
