// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// What the program is for, and the button that begins it.
Item {
    id: view

    required property FirstRunState firstRun

    Column {
        anchors.centerIn: parent
        anchors.verticalCenterOffset: -10
        spacing: 0
        width: Math.min(parent.width - 40, 640)

        Brand {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 64
        }
        Text {
            Accessible.name: text
            Accessible.role: Accessible.Heading
            color: Theme.ink
            font.pixelSize: Theme.displayType
            font.weight: Font.Bold
            horizontalAlignment: Text.AlignHCenter
            text: view.firstRun.headline
            topPadding: 20
            width: parent.width
            wrapMode: Text.Wrap
        }
        Text {
            Accessible.name: text
            Accessible.role: Accessible.StaticText
            color: Theme.secondaryInk
            font.pixelSize: Theme.bodyType
            font.weight: Font.DemiBold
            horizontalAlignment: Text.AlignHCenter
            text: view.firstRun.note
            topPadding: 8
            visible: text.length > 0
            width: parent.width
            wrapMode: Text.Wrap
        }
        Text {
            Accessible.name: text
            Accessible.role: Accessible.StaticText
            anchors.horizontalCenter: parent.horizontalCenter
            color: Theme.secondaryInk
            font.pixelSize: Theme.headingType
            horizontalAlignment: Text.AlignHCenter
            lineHeight: 1.25
            text: view.firstRun.body.replace("\n", " ")
            topPadding: 10
            width: Math.min(parent.width, 520)
            wrapMode: Text.Wrap
        }
        Text {
            Accessible.name: text
            Accessible.role: Accessible.StaticText
            color: Theme.ink
            font.pixelSize: Theme.headingType
            font.weight: Font.DemiBold
            horizontalAlignment: Text.AlignHCenter
            text: view.firstRun.step
            topPadding: 22
            visible: text.length > 0
            width: parent.width
            wrapMode: Text.Wrap
        }
        Item {
            height: view.firstRun.actionLabel.length > 0 ? 24 : 0
            width: 1
        }
        MainButton {
            anchors.horizontalCenter: parent.horizontalCenter
            symbol: view.firstRun.actionSymbol
            text: view.firstRun.actionLabel
            visible: text.length > 0

            onClicked: view.firstRun.act()
        }
        Text {
            Accessible.name: text
            Accessible.role: Accessible.StaticText
            color: Theme.tertiaryInk
            font.pixelSize: Theme.detailType
            horizontalAlignment: Text.AlignHCenter
            lineHeight: 1.25
            text: view.firstRun.explanation
            topPadding: 14
            visible: text.length > 0
            width: parent.width
            wrapMode: Text.Wrap
        }
    }
}
