// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// Something that lies over the window, and takes all keys while it is there.
FocusScope {
    id: sheet

    default property alias content: board.data
    property alias cardHeight: board.height
    property alias cardWidth: board.width
    required property string name

    /// What of it is more than a veil.
    readonly property Item card: board

    signal dismissed

    focus: true

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
        id: board

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
