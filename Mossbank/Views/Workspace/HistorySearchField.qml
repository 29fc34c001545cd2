// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// Where the words are typed that are looked for.
SearchField {
    id: field

    required property Workspace workspace

    Accessible.name: qsTranslate("Mossbank", "Search screen history")
    leftPadding: 36
    placeholderText: qsTranslate("Mossbank", "Search anything you’ve seen")
    rightPadding: 60

    onTextEdited: workspace.query = text

    Binding {
        property: "text"
        target: field
        value: field.workspace.query
        restoreMode: Binding.RestoreNone
    }
    Symbol {
        anchors.left: parent.left
        anchors.leftMargin: 12
        anchors.verticalCenter: parent.verticalCenter
        color: field.activeFocus ? Theme.ink : Theme.tertiaryInk
        name: "search"
    }
    Rectangle {
        anchors.right: parent.right
        anchors.rightMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        border.color: Theme.line
        color: Theme.background
        height: hint.implicitHeight + 4
        radius: 4
        visible: field.length === 0
        width: hint.implicitWidth + 10

        Text {
            id: hint

            Accessible.ignored: true
            anchors.centerIn: parent
            color: Theme.tertiaryInk
            font.pixelSize: Theme.smallType
            text: qsTranslate("Mossbank", "Ctrl F")
        }
    }
    SymbolButton {
        anchors.right: parent.right
        anchors.rightMargin: 4
        anchors.verticalCenter: parent.verticalCenter
        help: qsTranslate("Mossbank", "Clear search · esc")
        implicitHeight: Theme.controlHeight - 8
        symbol: "cross"
        text: qsTranslate("Mossbank", "Clear search")
        visible: field.length > 0

        onClicked: {
            field.workspace.query = "";
            field.forceActiveFocus();
        }
    }
}
