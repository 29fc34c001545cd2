// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// An installed application: its icon, its name and what identifies it.
Item {
    id: label

    required property string identity
    required property string initial
    required property bool isCurrent
    required property string name
    required property url picture

    Rectangle {
        anchors.fill: image
        color: Theme.line
        radius: Theme.rowRadius
        visible: image.status !== Image.Ready

        Text {
            anchors.centerIn: parent
            color: Theme.secondaryInk
            font.pixelSize: Theme.headingType
            text: label.initial
        }
    }
    Image {
        id: image

        anchors.verticalCenter: parent.verticalCenter
        height: 28
        source: label.picture
        sourceSize.height: 28
        sourceSize.width: 28
        width: 28
    }
    Column {
        anchors.left: image.right
        anchors.leftMargin: 12
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter

        Text {
            color: label.isCurrent ? Theme.accent : Theme.ink
            elide: Text.ElideRight
            font.pixelSize: Theme.bodyType
            font.weight: label.isCurrent ? Font.DemiBold : Font.Normal
            text: label.name
            textFormat: Text.PlainText
            width: parent.width
        }
        Text {
            color: Theme.tertiaryInk
            elide: Text.ElideMiddle
            font.pixelSize: Theme.smallType
            text: label.identity
            textFormat: Text.PlainText
            width: parent.width
        }
    }
}
