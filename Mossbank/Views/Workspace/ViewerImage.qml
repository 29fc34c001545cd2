// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Mossbank.Views

/// The picture itself. A press enlarges it.
T.AbstractButton {
    id: viewer

    required property Workspace workspace

    Accessible.name: qsTranslate("Mossbank", "Screenshot of %1").arg(workspace.viewer.app)
    focusPolicy: Qt.TabFocus
    text: Accessible.name

    onClicked: workspace.viewer.isEnlarged = true

    SoftShadow {
        height: picture.frame.height
        visible: picture.shown.length > 0
        width: picture.frame.width
        x: picture.x + picture.frame.x
        y: picture.y + picture.frame.y
    }
    ViewerPicture {
        id: picture

        anchors.fill: parent
        anchors.margins: 24
        fadeDuration: Theme.motion
        filename: viewer.workspace.viewer.filename
        folder: viewer.workspace.pictures
    }
    Rectangle {
        border.color: Theme.accent
        border.width: 2
        color: "transparent"
        height: picture.frame.height + 8
        radius: 6
        visible: viewer.visualFocus
        width: picture.frame.width + 8
        x: picture.x + picture.frame.x - 4
        y: picture.y + picture.frame.y - 4
    }
    UnavailablePicture {
        anchors.centerIn: parent
        reason: qsTranslate("Mossbank", "The image may have been moved or removed from the library folder.")
        visible: picture.isMissing
        width: Math.min(parent.width - 32, 420)
    }

    Accessible.onPressAction: clicked()
    Keys.onEnterPressed: clicked()
    Keys.onReturnPressed: clicked()
}
