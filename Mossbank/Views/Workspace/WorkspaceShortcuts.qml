// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// The keys that act wherever in the window the focus is.
Item {
    id: shortcuts

    /// Something lies over the window: what is under it is not to change.
    required property bool isCovered
    required property Workspace workspace

    signal closes
    signal focusesSearch

    Shortcut {
        enabled: !shortcuts.isCovered
        sequence: "Ctrl+F"
        onActivated: shortcuts.focusesSearch()
    }
    Shortcut {
        enabled: !shortcuts.workspace.asksToDelete
        sequence: "Ctrl+Left"
        onActivated: shortcuts.workspace.viewer.stepBack()
    }
    Shortcut {
        enabled: !shortcuts.workspace.asksToDelete
        sequence: "Ctrl+Right"
        onActivated: shortcuts.workspace.viewer.stepOn()
    }
    Shortcut {
        autoRepeat: false
        enabled: !shortcuts.workspace.asksToDelete
        sequence: "Ctrl+Shift+T"
        onActivated: shortcuts.workspace.showToday()
    }
    Shortcut {
        autoRepeat: false
        sequence: "Ctrl+Shift+R"
        onActivated: shortcuts.workspace.recording.toggle()
    }
    Shortcut {
        sequence: "Ctrl+W"
        onActivated: shortcuts.closes()
    }
    Shortcut {
        sequence: "Ctrl+Q"
        onActivated: Qt.quit()
    }
}
