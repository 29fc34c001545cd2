// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Capture/PauseLength.h"

#include <QList>
#include <QString>

#include <optional>

namespace mossbank {

/// What the tray shows the state of.
struct TrayState {
    /// With the sample library nothing is ever recorded.
    bool isDemo = false;
    bool isRecording = false;
    /// A timed pause is on.
    bool isPaused = false;
    /// The recorder's two lines.
    QString status = {};
    std::optional<QString> errorMessage = {};

    friend bool operator==(const TrayState&, const TrayState&) = default;
};

enum class TrayCommand {
    /// A line to be read, a divider, or a menu.
    None,
    ToggleRecording,
    PauseFor,
    CancelPause,
    CaptureNow,
    ExcludeFrontApplication,
    OpenWindow,
    Quit,
};

/// What an entry does when it is chosen.
struct TrayChoice {
    TrayCommand command = TrayCommand::None;
    /// Of `PauseFor`.
    PauseLength length = PauseLength::FifteenMinutes;

    friend bool operator==(const TrayChoice&, const TrayChoice&) = default;
};

struct TrayEntry {
    /// As it is to be read: no sign in it stands for a key.
    QString title = {};
    TrayChoice choice = {};
    bool isEnabled = true;
    bool isVisible = true;
    bool isDivider = false;
    /// Of a menu within the menu; empty for anything else.
    QList<TrayEntry> entries = {};

    friend bool operator==(const TrayEntry&, const TrayEntry&) = default;
};

/// What stands in the menu of the icon in the tray.
///
/// Threading: the main thread.
class TrayMenu {
public:
    TrayMenu() = delete;

    /// How many characters a line of the menu has at most, and how many lines a failure.
    static constexpr int kLineLength = 72;
    static constexpr int kErrorLines = 5;

    /// From top to bottom. The same entries in the same places whatever the state is; those of no
    /// use in it are not visible. So a menu that is open can follow, with nothing moving away from
    /// under the pointer but what came or went above it.
    static QList<TrayEntry> entries(const TrayState& state);
};

} // namespace mossbank
