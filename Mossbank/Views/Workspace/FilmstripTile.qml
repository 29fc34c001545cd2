// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Mossbank.Views

/// A screenshot in the strip, with its time.
T.ItemDelegate {
    id: tile

    required property string app
    required property bool hasKeys
    required property string help
    required property bool isCurrent
    /// It waits to become another, out of sight but not out of the list.
    property bool isPooled: false
    required property url picture
    required property string time

    Accessible.ignored: isPooled
    Accessible.name: help
    Accessible.selectable: true
    Accessible.selected: isCurrent
    focusPolicy: Qt.NoFocus
    height: when.y + when.height
    hoverEnabled: true
    width: 104

    Thumbnail {
        id: thumbnail

        height: 62
        picture: tile.picture
        width: parent.width
        y: 6
    }
    Rectangle {
        anchors.fill: thumbnail
        anchors.margins: -4
        border.color: tile.isCurrent ? Theme.accent : Theme.line
        border.width: tile.isCurrent && tile.hasKeys ? 3 : 2
        color: "transparent"
        radius: Theme.controlRadius
        visible: tile.isCurrent || tile.hovered
    }
    Text {
        id: when

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: thumbnail.bottom
        anchors.topMargin: 6
        color: tile.isCurrent ? Theme.ink : Theme.tertiaryInk
        font.pixelSize: Theme.smallType
        font.weight: tile.isCurrent ? Font.Bold : Font.Normal
        fontSizeMode: Text.HorizontalFit
        horizontalAlignment: Text.AlignHCenter
        minimumPixelSize: 8
        text: tile.time
    }
    HelpTip {
        text: tile.help
        visible: tile.hovered
        y: -height - 4
    }

    Accessible.onPressAction: clicked()
    ListView.onPooled: isPooled = true
    ListView.onReused: isPooled = false
}
