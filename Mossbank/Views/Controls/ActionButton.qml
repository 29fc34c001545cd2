// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Mossbank.Views

/// A button with a word on it.
T.Button {
    id: button

    /// Whether it does what the window is there for.
    property bool isMain: false

    Accessible.name: text
    font.pixelSize: Theme.bodyType
    implicitHeight: Theme.controlHeight
    implicitWidth: implicitContentWidth + 32
    opacity: enabled ? 1 : 0.45

    background: Rectangle {
        border.color: button.isMain ? Theme.accent : Theme.line
        color: button.isMain ? (button.down ? Qt.darker(Theme.accent, 1.15) : Theme.accent)
                             : (button.down || button.hovered ? Theme.accentSoft : Theme.card)
        radius: Theme.controlRadius

        Rectangle {
            anchors.fill: parent
            anchors.margins: -3
            border.color: Theme.accent
            border.width: 2
            color: "transparent"
            radius: Theme.controlRadius + 3
            visible: button.visualFocus
        }
    }
    contentItem: Text {
        color: button.isMain ? Theme.accentInk : Theme.ink
        font: button.font
        horizontalAlignment: Text.AlignHCenter
        text: button.text
        textFormat: Text.PlainText
        verticalAlignment: Text.AlignVCenter
    }

    // Assistive tools press also what is not enabled.
    Accessible.onPressAction: if (button.enabled)
        button.clicked()
    Keys.onEnterPressed: button.clicked()
    Keys.onReturnPressed: button.clicked()
}
