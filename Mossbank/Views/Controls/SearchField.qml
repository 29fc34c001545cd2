// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Mossbank.Views

/// A line to type what is looked for.
T.TextField {
    id: field

    Accessible.name: placeholderText
    Accessible.searchEdit: true
    color: Theme.ink
    font.pixelSize: Theme.bodyType
    implicitHeight: Theme.controlHeight
    leftPadding: 12
    placeholderTextColor: Theme.tertiaryInk
    rightPadding: 12
    selectByMouse: true
    selectedTextColor: Theme.accentInk
    selectionColor: Theme.accent
    verticalAlignment: TextInput.AlignVCenter

    background: Rectangle {
        border.color: field.activeFocus ? Theme.accent : Theme.line
        border.width: field.activeFocus ? 2 : 1
        color: Theme.card
        radius: Theme.controlRadius

        Text {
            anchors.fill: parent
            anchors.leftMargin: field.leftPadding
            anchors.rightMargin: field.rightPadding
            color: field.placeholderTextColor
            elide: Text.ElideRight
            font: field.font
            text: field.placeholderText
            verticalAlignment: Text.AlignVCenter
            visible: field.length === 0 && field.preeditText.length === 0
        }
    }
}
