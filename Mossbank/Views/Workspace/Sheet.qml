// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// Something that lies over the window, and takes all keys while it is there.
FocusScope {
    id: sheet

    default property alias content: card.data
    property alias cardHeight: card.height
    property alias cardWidth: card.width
    required property string name

    /// What had the keys before.
    property Item previous: null

    signal dismissed

    focus: true

    Component.onCompleted: {
        previous = Window.activeFocusItem;
        forceActiveFocus();
    }
    Component.onDestruction: if (previous)
        previous.forceActiveFocus()
    Keys.onEscapePressed: dismissed()

    Rectangle {
        anchors.fill: parent
        color: Theme.veil

        // What lies under it is not to be pressed.
        MouseArea {
            acceptedButtons: Qt.AllButtons
            anchors.fill: parent
            hoverEnabled: true

            onClicked: sheet.dismissed()
            onWheel: wheel => wheel.accepted = true
        }
    }
    Rectangle {
        id: card

        Accessible.name: sheet.name
        Accessible.role: Accessible.Dialog
        anchors.centerIn: parent
        border.color: Theme.line
        color: Theme.card
        radius: Theme.cardRadius

        MouseArea {
            acceptedButtons: Qt.AllButtons
            anchors.fill: parent
        }
    }
}
