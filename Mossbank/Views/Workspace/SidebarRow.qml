// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Mossbank.Views

// Nothing here is ever replaced, so nothing is lost by making it at once.
// qmllint disable deferred-property-id

/// One of the things that the history can be held to.
T.RadioButton {
    id: row

    property string count
    property string help
    property bool isChosen: false
    /// In place of the symbol.
    property Component leading: null
    property bool showsCheck: false
    property string symbol

    readonly property color ink: isChosen ? Theme.accent : Theme.ink

    Accessible.checkable: true
    Accessible.checked: isChosen
    Accessible.description: count
    Accessible.name: text
    checkable: false
    font.pixelSize: Theme.bodyType
    hoverEnabled: true
    implicitHeight: Theme.rowHeight

    background: Rectangle {
        color: row.isChosen || row.hovered ? Theme.accentSoft : "transparent"
        opacity: row.isChosen ? 1 : 0.6
        radius: Theme.rowRadius

        FocusFrame {
            anchors.margins: 0
            radius: Theme.rowRadius
            visible: row.visualFocus
        }
    }
    contentItem: Item {
        Symbol {
            id: drawing

            anchors.verticalCenter: parent.verticalCenter
            color: row.ink
            name: row.symbol
            x: 8
        }
        Loader {
            id: pictured

            anchors.verticalCenter: parent.verticalCenter
            sourceComponent: row.leading
            x: 8
        }
        Text {
            anchors.left: parent.left
            anchors.leftMargin: row.leading ? 35 : 33
            anchors.right: tail.left
            anchors.rightMargin: 6
            anchors.verticalCenter: parent.verticalCenter
            color: row.ink
            elide: Text.ElideRight
            font.pixelSize: Theme.bodyType
            font.weight: row.isChosen ? Font.DemiBold : Font.Normal
            text: row.text
            textFormat: Text.PlainText
        }
        Row {
            id: tail

            anchors.right: parent.right
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter

            Text {
                color: row.isChosen ? Theme.accent : Theme.tertiaryInk
                font.pixelSize: Theme.smallType
                text: row.count
                visible: text.length > 0
            }
            Symbol {
                color: Theme.accent
                name: "check"
                visible: row.showsCheck && row.isChosen
            }
        }
    }

    Accessible.onPressAction: clicked()
    Keys.onEnterPressed: clicked()
    Keys.onReturnPressed: clicked()

    HelpTip {
        text: row.help
        visible: row.hovered && text.length > 0
    }
}
