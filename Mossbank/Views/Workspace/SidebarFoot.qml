// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// How large the library is, and how the window looks.
Item {
    id: foot

    required property Sidebar sidebar

    height: Math.max(line.height, appearance.height) + 26

    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        color: Theme.line
        height: 1
    }
    Symbol {
        id: drive

        anchors.verticalCenter: parent.verticalCenter
        color: Theme.secondaryInk
        name: "drive"
    }
    Text {
        id: line

        Accessible.name: text
        Accessible.role: Accessible.StaticText
        anchors.left: drive.right
        anchors.leftMargin: 8
        anchors.right: appearance.left
        anchors.rightMargin: 4
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.secondaryInk
        font.pixelSize: Theme.smallType
        lineHeight: 1.15
        text: foot.sidebar.isSaving ? qsTranslate("Mossbank", "Saving") : foot.sidebar.storage
        wrapMode: Text.Wrap
    }
    AppearancePicker {
        id: appearance

        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        sidebar: foot.sidebar
    }
}
