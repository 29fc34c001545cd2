// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Mossbank.Views

/// One of the ways in which the history is shown.
T.RadioButton {
    id: segment

    required property choice modelData

    readonly property color ink: modelData.isChosen ? Theme.ink : Theme.secondaryInk

    Accessible.checkable: true
    Accessible.checked: modelData.isChosen
    Accessible.description: modelData.help
    Accessible.name: modelData.label
    checkable: false
    hoverEnabled: true

    background: Rectangle {
        border.color: segment.modelData.isChosen ? Theme.line : "transparent"
        color: segment.modelData.isChosen ? Theme.card : segment.hovered ? Theme.accentSoft : "transparent"
        radius: Theme.rowRadius

        FocusFrame {
            anchors.margins: 0
            radius: Theme.rowRadius
            visible: segment.visualFocus
        }
    }
    contentItem: Item {
        Row {
            anchors.centerIn: parent
            spacing: 6

            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                color: segment.ink
                name: segment.modelData.symbol
            }
            Text {
                anchors.verticalCenter: parent.verticalCenter
                color: segment.ink
                font.pixelSize: Theme.detailType
                font.weight: Font.Medium
                text: segment.modelData.label
            }
        }
    }

    Accessible.onPressAction: clicked()
    Keys.onEnterPressed: clicked()
    Keys.onReturnPressed: clicked()

    HelpTip {
        text: segment.modelData.help
        visible: segment.hovered
    }
}
