// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// Asks whether the end of the program is meant.
Window {
    id: window

    required property QuitAnswer answer

    /// What all of it takes.
    readonly property real neededHeight: explanation.y + explanation.height + Theme.controlHeight + 40

    color: Theme.background
    flags: Qt.Dialog
    height: neededHeight
    maximumHeight: neededHeight
    maximumWidth: width
    minimumHeight: neededHeight
    minimumWidth: width
    title: answer.message
    width: Math.round(420 * Theme.scale)

    onClosing: answer.keep()

    Shortcut {
        sequence: "Escape"
        onActivated: window.answer.keep()
    }
    Shortcut {
        sequence: "Ctrl+Q"
        onActivated: window.answer.quit()
    }
    WarningSign {
        id: sign

        objectName: "sign"

        anchors.left: parent.left
        anchors.margins: 20
        anchors.top: parent.top
    }
    Text {
        id: message

        Accessible.name: text
        Accessible.role: Accessible.StaticText
        anchors.left: sign.right
        anchors.leftMargin: 14
        anchors.margins: 20
        anchors.right: parent.right
        anchors.top: parent.top
        color: Theme.ink
        font.pixelSize: Theme.headingType
        font.weight: Font.DemiBold
        text: window.answer.message
        wrapMode: Text.Wrap
    }
    Text {
        id: explanation

        Accessible.name: text
        Accessible.role: Accessible.StaticText
        anchors.left: message.left
        anchors.right: message.right
        anchors.top: message.bottom
        anchors.topMargin: 8
        color: Theme.secondaryInk
        font.pixelSize: Theme.bodyType
        lineHeight: 1.2
        text: window.answer.explanation
        wrapMode: Text.Wrap
    }
    ActionButton {
        id: quitting

        anchors.bottom: parent.bottom
        anchors.margins: 16
        anchors.right: keeping.left
        anchors.rightMargin: 8
        text: window.answer.quitLabel

        onClicked: window.answer.quit()
    }
    ActionButton {
        id: keeping

        anchors.bottom: parent.bottom
        anchors.margins: 16
        anchors.right: parent.right
        focus: true
        isMain: true
        text: window.answer.keepLabel

        KeyNavigation.tab: quitting
        onClicked: window.answer.keep()
    }
}
