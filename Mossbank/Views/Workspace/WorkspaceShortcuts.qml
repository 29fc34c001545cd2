// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// The keys that act wherever in the window the focus is.
Item {
    id: shortcuts

    required property Workspace workspace

    signal closes
    signal focusesSearch

    Shortcut {
        sequence: "Ctrl+F"
        onActivated: shortcuts.focusesSearch()
    }
    Shortcut {
        sequence: "Ctrl+Left"
        onActivated: shortcuts.workspace.viewer.stepBack()
    }
    Shortcut {
        sequence: "Ctrl+Right"
        onActivated: shortcuts.workspace.viewer.stepOn()
    }
    Shortcut {
        sequence: "Ctrl+Shift+T"
        onActivated: shortcuts.workspace.showToday()
    }
    Shortcut {
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
