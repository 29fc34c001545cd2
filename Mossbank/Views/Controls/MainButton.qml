// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Mossbank.Views

// Nothing here is ever replaced, so nothing is lost by making it at once.
// qmllint disable deferred-property-id

/// The one button of a page that has no other.
T.AbstractButton {
    id: button

    property string symbol

    Accessible.name: text
    font.pixelSize: Theme.headingType
    hoverEnabled: true
    implicitHeight: Theme.controlHeight + 6
    implicitWidth: row.implicitWidth + 44

    background: Rectangle {
        color: button.down || button.hovered ? Qt.darker(Theme.accent, 1.12) : Theme.accent
        radius: Theme.controlRadius

        FocusFrame {
            visible: button.visualFocus
        }
    }
    contentItem: Item {
        Row {
            id: row

            anchors.centerIn: parent
            spacing: 8

            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                color: Theme.accentInk
                name: button.symbol
                visible: name.length > 0
            }
            Text {
                color: Theme.accentInk
                font: button.font
                text: button.text
                textFormat: Text.PlainText
            }
        }
    }

    Accessible.onPressAction: clicked()
    Keys.onEnterPressed: clicked()
    Keys.onReturnPressed: clicked()
}
