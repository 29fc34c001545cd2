// SPDX-License-Identifier: Apache-2.0
import QtQuick

/// The icon of an application, or a square with its initial where it has none.
Item {
    id: mark

    required property double hue
    required property string initial
    required property url picture
    property int size: 18

    Accessible.ignored: true
    height: size
    width: size

    Rectangle {
        anchors.fill: parent
        // Dark enough, whatever the hue, for what is written on it.
        color: Qt.hsla(mark.hue, 0.45, 0.3, 1)
        radius: 5
        visible: image.status !== Image.Ready

        Text {
            anchors.centerIn: parent
            color: "#ffffff"
            font.pixelSize: Math.round(mark.size * 0.6)
            font.weight: Font.DemiBold
            text: mark.initial
        }
    }
    Image {
        id: image

        anchors.fill: parent
        source: mark.picture
        sourceSize.height: mark.size
        sourceSize.width: mark.size
    }
}
