// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Mossbank.Views

// Nothing here is ever replaced, so nothing is lost by making it at once.
// qmllint disable deferred-property-id

/// A screenshot that was found: the picture, when and where it was, and what was found in it.
T.ItemDelegate {
    id: row

    required property string app
    required property bool hasKeys
    required property string help
    required property bool isCurrent
    /// It waits to become another, out of sight but not out of the list.
    property bool isPooled: false
    required property string memoryText
    required property url picture
    required property string query
    required property string time

    Accessible.description: snippet.spokenText
    Accessible.ignored: isPooled
    Accessible.name: help
    Accessible.selectable: true
    Accessible.selected: isCurrent
    focusPolicy: Qt.NoFocus
    hoverEnabled: true
    implicitHeight: Math.max(76, words.height + 20)

    background: Rectangle {
        border.color: row.isCurrent ? row.hasKeys ? Theme.accent : Theme.line : "transparent"
        border.width: row.isCurrent && row.hasKeys ? 2 : 1
        color: row.isCurrent ? Theme.card : row.hovered ? Theme.accentSoft : "transparent"
        radius: 10
    }
    contentItem: Item {
        Thumbnail {
            id: thumbnail

            anchors.verticalCenter: parent.verticalCenter
            height: 56
            picture: row.picture
            width: 92
            x: 10
        }
        Column {
            id: words

            anchors.left: thumbnail.right
            anchors.leftMargin: 11
            anchors.right: parent.right
            anchors.rightMargin: 10
            anchors.verticalCenter: parent.verticalCenter
            spacing: 3

            Item {
                height: name.implicitHeight
                width: parent.width

                Text {
                    id: name

                    anchors.left: parent.left
                    anchors.right: when.left
                    anchors.rightMargin: 6
                    color: Theme.ink
                    elide: Text.ElideRight
                    font.pixelSize: Theme.bodyType
                    font.weight: Font.DemiBold
                    text: row.app
                    textFormat: Text.PlainText
                }
                Text {
                    id: when

                    anchors.baseline: name.baseline
                    anchors.right: parent.right
                    color: row.hovered ? Theme.secondaryInk : Theme.tertiaryInk
                    font.pixelSize: Theme.smallType
                    text: row.time
                }
            }
            MarkedText {
                id: snippet

                color: Theme.secondaryInk
                emptyText: qsTranslate("Mossbank", "No recognized text")
                font.family: Application.font.family
                font.pixelSize: Theme.detailType
                height: implicitHeight
                markColor: Theme.mark
                markedColor: Theme.markInk
                query: row.query
                text: row.memoryText
                width: parent.width
            }
        }
    }

    Accessible.onPressAction: clicked()
    ListView.onPooled: isPooled = true
    ListView.onReused: isPooled = false
}
