// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Mossbank.Views

// Nothing here is ever replaced, so nothing is lost by making it at once.
// qmllint disable deferred-property-id

/// A button with a symbol on it, and beside that perhaps a word.
T.AbstractButton {
    id: button

    /// What it is for, in a sentence. Without one its text says it.
    property string help: text
    property bool isFramed: false
    /// Whether what it stands for is on.
    property bool isOn: false
    property bool showsText: false
    required property string symbol

    readonly property color ink: isOn ? Theme.accent : Theme.ink

    Accessible.description: help === text ? "" : help
    Accessible.name: text
    font.pixelSize: Theme.bodyType
    font.weight: Font.Medium
    hoverEnabled: true
    implicitHeight: Theme.rowHeight
    implicitWidth: showsText ? contentItem.implicitWidth + 28 : implicitHeight
    opacity: enabled ? 1 : 0.4

    background: Rectangle {
        border.color: button.isFramed ? Theme.line : "transparent"
        color: button.isOn || button.down ? Theme.accentSoft
                                          : button.hovered ? Theme.accentSoft
                                                           : button.isFramed ? Theme.card : "transparent"
        radius: Theme.controlRadius

        FocusFrame {
            visible: button.visualFocus
        }
    }
    contentItem: Item {
        implicitWidth: drawing.width + (button.showsText ? 8 + label.implicitWidth : 0)

        Symbol {
            id: drawing

            anchors.verticalCenter: parent.verticalCenter
            color: button.ink
            name: button.symbol
            x: button.showsText ? Math.round((parent.width - parent.implicitWidth) / 2) : Math.round((parent.width - width) / 2)
        }
        Text {
            id: label

            anchors.left: drawing.right
            anchors.leftMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            color: button.ink
            font: button.font
            text: button.text
            textFormat: Text.PlainText
            visible: button.showsText
        }
    }

    // In the midst of losing them it is too early to hand the keys on.
    onActiveFocusChanged: if (!activeFocus && !enabled)
        handingOn.start()

    // Assistive tools press also what is not enabled.
    Accessible.onPressAction: if (button.enabled)
        button.clicked()
    Keys.onEnterPressed: button.clicked()
    Keys.onReturnPressed: button.clicked()

    /// The keys go on from here where this can take them no more, and not from the window's corner.
    Timer {
        id: handingOn

        interval: 0

        onTriggered: if (!button.enabled && button.parent.enabled)
            button.nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason)
    }
    HelpTip {
        text: button.help
        visible: button.hovered && text.length > 0 && !(button.showsText && text === button.text)
    }
}
