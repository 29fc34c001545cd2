// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// Says that recording goes on without a window.
Window {
    id: window

    required property ClosingWords words

    /// What all of it takes.
    readonly property real neededHeight: explanation.y + explanation.height + Theme.controlHeight + 40

    color: Theme.background
    flags: Qt.Dialog
    height: neededHeight
    maximumHeight: neededHeight
    maximumWidth: width
    minimumHeight: neededHeight
    minimumWidth: width
    title: words.message
    width: Math.round(420 * Theme.scale)

    onClosing: words.dismiss()

    Shortcut {
        sequence: "Escape"
        onActivated: window.words.dismiss()
    }
    Text {
        id: message

        Accessible.name: text
        Accessible.role: Accessible.StaticText
        anchors.left: parent.left
        anchors.margins: 20
        anchors.right: parent.right
        anchors.top: parent.top
        color: Theme.ink
        font.pixelSize: Theme.headingType
        font.weight: Font.DemiBold
        text: window.words.message
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
        text: window.words.explanation
        wrapMode: Text.Wrap
    }
    ActionButton {
        anchors.bottom: parent.bottom
        anchors.margins: 16
        anchors.right: parent.right
        focus: true
        isMain: true
        text: window.words.label

        onClicked: window.words.dismiss()
    }
}
