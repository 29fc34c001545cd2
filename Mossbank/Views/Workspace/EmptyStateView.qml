// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

// Components within this one are made where its ids are in reach; the linter cannot know it.
// qmllint disable unqualified

/// Says that there is nothing, and where there is something.
Item {
    id: view

    required property EmptyState emptyState

    Column {
        anchors.centerIn: parent
        spacing: 10
        width: Math.min(parent.width - 40, 520)

        Symbol {
            anchors.horizontalCenter: parent.horizontalCenter
            color: Theme.tertiaryInk
            name: view.emptyState.symbol
            size: Math.round(36 * Theme.scale)
        }
        Text {
            Accessible.name: text
            Accessible.role: Accessible.Heading
            color: Theme.ink
            font.pixelSize: Theme.titleType
            font.weight: Font.Bold
            horizontalAlignment: Text.AlignHCenter
            text: view.emptyState.title
            textFormat: Text.PlainText
            width: parent.width
            wrapMode: Text.Wrap
        }
        Text {
            Accessible.name: text
            Accessible.role: Accessible.StaticText
            bottomPadding: 8
            color: Theme.secondaryInk
            font.pixelSize: Theme.bodyType
            horizontalAlignment: Text.AlignHCenter
            lineHeight: 1.25
            text: view.emptyState.detail
            textFormat: Text.PlainText
            width: parent.width
            wrapMode: Text.Wrap
        }
        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: 8

            Repeater {
                model: view.emptyState.actions

                ActionButton {
                    id: button

                    required property int index
                    required property choice modelData

                    Accessible.description: modelData.help
                    text: modelData.label

                    onClicked: view.emptyState.act(index)

                    HelpTip {
                        text: button.modelData.help
                        visible: button.hovered && text.length > 0
                    }
                }
            }
        }
    }
}
