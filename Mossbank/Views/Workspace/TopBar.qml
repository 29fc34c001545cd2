// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// The search field, and the switch for recording.
Rectangle {
    id: bar

    required property real searchFieldX
    required property Workspace workspace

    function focusSearch() {
        search.forceActiveFocus(Qt.ShortcutFocusReason);
        search.selectAll();
    }

    color: Theme.panel
    height: Math.max(52, Theme.controlHeight + 20)

    Rectangle {
        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        color: Theme.line
        height: 1
    }
    Brand {
        id: brand

        anchors.left: parent.left
        anchors.leftMargin: 16
        anchors.verticalCenter: parent.verticalCenter
    }
    Text {
        anchors.left: brand.right
        anchors.leftMargin: 9
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.ink
        font.pixelSize: Theme.headingType
        font.weight: Font.DemiBold
        text: "Mossbank"
    }
    HistorySearchField {
        id: search

        anchors.verticalCenter: parent.verticalCenter
        focus: true
        objectName: "search"
        width: Math.max(200, Math.min(378, recorder.x - x - 24))
        workspace: bar.workspace
        x: bar.searchFieldX
    }
    Row {
        id: recorder

        anchors.right: parent.right
        anchors.rightMargin: 16
        anchors.verticalCenter: parent.verticalCenter
        spacing: 8

        RecordingDot {
            anchors.verticalCenter: parent.verticalCenter
            recordingState: bar.workspace.recording.state
        }
        Text {
            Accessible.name: text
            Accessible.role: Accessible.StaticText
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.secondaryInk
            font.pixelSize: Theme.bodyType
            rightPadding: 6
            text: bar.workspace.recording.text
        }
        SymbolButton {
            enabled: bar.workspace.recording.isEnabled
            isFramed: true
            showsText: true
            symbol: bar.workspace.recording.state === RecordingSwitch.Recording ? "pause"
                    : bar.workspace.recording.state === RecordingSwitch.Paused ? "play" : "record"
            text: bar.workspace.recording.action

            onClicked: bar.workspace.recording.toggle()
        }
    }
}
