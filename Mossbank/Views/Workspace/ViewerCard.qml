// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

// Components within this one are made where its ids are in reach; the linter cannot know it.
// qmllint disable unqualified

/// The selected screenshot, and beside it the words in it where they are wanted.
Item {
    id: card

    required property Workspace workspace

    SoftShadow {
        anchors.fill: frame
        opacity: 0.5
        radius: frame.radius
    }
    Rectangle {
        id: frame

        anchors.fill: parent
        border.color: Theme.line
        color: Theme.background
        radius: Theme.cardRadius

        Rectangle {
            anchors.fill: toolbar
            anchors.margins: 1
            anchors.bottomMargin: 0
            color: Theme.card
            radius: Theme.cardRadius - 1

            Rectangle {
                anchors.bottom: parent.bottom
                anchors.left: parent.left
                anchors.right: parent.right
                color: Theme.card
                height: Theme.cardRadius
            }
        }
        ViewerToolbar {
            id: toolbar

            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: parent.top
            workspace: card.workspace
        }
        Rectangle {
            id: rule

            anchors.left: parent.left
            anchors.leftMargin: 1
            anchors.right: parent.right
            anchors.rightMargin: 1
            anchors.top: toolbar.bottom
            color: Theme.line
            height: 1
        }
        ViewerImage {
            anchors.bottom: parent.bottom
            anchors.left: parent.left
            anchors.right: pane.left
            anchors.top: rule.bottom
            workspace: card.workspace
        }
        Loader {
            id: pane

            active: card.workspace.showsText
            anchors.bottom: parent.bottom
            anchors.bottomMargin: 1
            anchors.right: parent.right
            anchors.rightMargin: 1
            anchors.top: rule.bottom
            width: active ? Math.min(270, card.width * 0.42) : 0

            sourceComponent: RecognizedTextPane {
                workspace: card.workspace
            }
        }
    }
}
