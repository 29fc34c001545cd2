// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Mossbank.Views

/// The window in which one of the installed applications is chosen.
Window {
    id: window

    required property ApplicationChoices choices

    color: Theme.background
    height: 520
    minimumHeight: 320
    minimumWidth: 320
    title: choices.title
    visible: true
    width: 420

    onClosing: choices.cancel()

    Shortcut {
        sequence: "Escape"
        onActivated: window.choices.cancel()
    }
    SearchField {
        id: search

        anchors.left: parent.left
        anchors.margins: 16
        anchors.right: parent.right
        anchors.top: parent.top
        focus: true
        placeholderText: window.choices.searchLabel

        Keys.onDownPressed: window.choices.step(1)
        Keys.onUpPressed: window.choices.step(-1)
        onAccepted: window.choices.choose()
        onTextEdited: window.choices.filter = text
    }
    Rectangle {
        id: frame

        anchors.bottom: cancelling.top
        anchors.left: parent.left
        anchors.margins: 16
        anchors.right: parent.right
        anchors.top: search.bottom
        border.color: Theme.line
        color: Theme.card
        radius: Theme.controlRadius

        ListView {
            id: list

            Accessible.name: window.choices.title
            Accessible.role: Accessible.List
            anchors.fill: parent
            anchors.margins: 4
            clip: true
            currentIndex: window.choices.currentRow
            highlightMoveDuration: 0
            model: window.choices

            T.ScrollBar.vertical: T.ScrollBar {
                id: bar

                implicitWidth: 8
                visible: size < 1

                contentItem: Rectangle {
                    color: bar.pressed || bar.hovered ? Theme.tertiaryInk : Theme.line
                    implicitWidth: 8
                    radius: 4
                }
            }
            delegate: ApplicationRow {
                required property int index

                isCurrent: ListView.isCurrentItem
                // Beside the bar.
                width: ListView.view.width - 12

                // A delegate is made where these are in reach; the linter cannot know it.
                onClicked: window.choices.currentRow = index // qmllint disable unqualified
                onDoubleClicked: window.choices.choose() // qmllint disable unqualified
            }
        }
        Text {
            Accessible.name: text
            Accessible.role: Accessible.StaticText
            anchors.centerIn: parent
            color: Theme.tertiaryInk
            font.pixelSize: Theme.bodyType
            horizontalAlignment: Text.AlignHCenter
            text: window.choices.emptyText
            visible: text.length > 0
            width: parent.width - 32
            wrapMode: Text.Wrap
        }
    }
    ActionButton {
        id: cancelling

        anchors.bottom: parent.bottom
        anchors.margins: 16
        anchors.right: choosing.left
        anchors.rightMargin: 8
        text: window.choices.cancelLabel

        onClicked: window.choices.cancel()
    }
    ActionButton {
        id: choosing

        anchors.bottom: parent.bottom
        anchors.margins: 16
        anchors.right: parent.right
        enabled: window.choices.currentRow >= 0
        isMain: true
        text: window.choices.chooseLabel

        onClicked: window.choices.choose()
    }
}
