// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// The selected screenshot over the whole window, at any size.
Sheet {
    id: view

    required property Workspace workspace
    readonly property Viewer viewer: workspace.viewer

    cardHeight: Math.max(220, height - 48)
    cardWidth: Math.max(320, width - 48)
    name: qsTranslate("Mossbank", "Enlarged screenshot of %1").arg(viewer.app)

    function pan(across, down) {
        const step = 80;
        scrolling.contentX = Math.max(0, Math.min(scrolling.contentWidth - scrolling.width, scrolling.contentX + across * step));
        scrolling.contentY = Math.max(0, Math.min(scrolling.contentHeight - scrolling.height, scrolling.contentY + down * step));
    }

    Keys.onDownPressed: pan(0, 1)
    Keys.onLeftPressed: pan(-1, 0)
    Keys.onRightPressed: pan(1, 0)
    Keys.onUpPressed: pan(0, -1)
    onDismissed: viewer.isEnlarged = false

    ZoomScale {
        id: zoom

        // What one pixel of the picture is on the screen.
        picture: Qt.size(picture.pixels.width / Screen.devicePixelRatio, picture.pixels.height / Screen.devicePixelRatio)
        viewport: Qt.size(scrolling.width, scrolling.height)
    }
    Shortcut {
        sequence: "Ctrl+0"
        onActivated: zoom.showWhole()
    }
    Shortcut {
        sequence: "Ctrl+1"
        onActivated: zoom.showOwnSize()
    }
    Shortcut {
        sequences: ["Ctrl++", "Ctrl+="]
        onActivated: zoom.zoomIn()
    }
    Shortcut {
        sequence: "Ctrl+-"
        onActivated: zoom.zoomOut()
    }
    Text {
        anchors.left: parent.left
        anchors.leftMargin: 16
        anchors.right: buttons.left
        anchors.rightMargin: 12
        anchors.verticalCenter: buttons.verticalCenter
        color: Theme.ink
        elide: Text.ElideRight
        font.pixelSize: Theme.bodyType
        font.weight: Font.DemiBold
        text: view.viewer.title
        textFormat: Text.PlainText
    }
    Row {
        id: buttons

        anchors.right: parent.right
        anchors.rightMargin: 12
        anchors.top: parent.top
        anchors.topMargin: 10
        spacing: 4

        Text {
            Accessible.name: text
            Accessible.role: Accessible.StaticText
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.secondaryInk
            font.pixelSize: Theme.detailType
            rightPadding: 6
            text: zoom.label
        }
        SymbolButton {
            help: qsTranslate("Mossbank", "Fit the whole screenshot in the window · ⌘0")
            isOn: zoom.isFitting
            symbol: "fit"
            text: qsTranslate("Mossbank", "Fit")

            onClicked: zoom.showWhole()
        }
        SymbolButton {
            help: qsTranslate("Mossbank", "Show the screenshot at its own size · ⌘1")
            symbol: "photo"
            text: qsTranslate("Mossbank", "Actual Size")

            onClicked: zoom.showOwnSize()
        }
        SymbolButton {
            symbol: "minus"
            text: qsTranslate("Mossbank", "Zoom Out")

            onClicked: zoom.zoomOut()
        }
        SymbolButton {
            symbol: "plus"
            text: qsTranslate("Mossbank", "Zoom In")

            onClicked: zoom.zoomIn()
        }
        Item {
            height: 1
            width: 6
        }
        ActionButton {
            focus: true
            implicitHeight: Theme.rowHeight
            isMain: true
            text: qsTranslate("Mossbank", "Done")

            onClicked: view.dismissed()
        }
    }
    Flickable {
        id: scrolling

        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.margins: 12
        anchors.right: parent.right
        anchors.top: buttons.bottom
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        contentHeight: Math.max(picture.height, height)
        contentWidth: Math.max(picture.width, width)
        visible: view.viewer.hasSelection && !picture.isMissing

        ScrollBar.horizontal: ScrollBar {
        }
        ScrollBar.vertical: ScrollBar {
        }

        SteadyImage {
            id: picture

            Accessible.name: view.name
            Accessible.role: Accessible.Graphic
            height: zoom.picture.height * zoom.scale
            objectName: "enlargedPicture"
            source: view.viewer.screenshot
            width: zoom.picture.width * zoom.scale
            x: Math.round((scrolling.contentWidth - width) / 2)
            y: Math.round((scrolling.contentHeight - height) / 2)
        }
    }
    UnavailablePicture {
        anchors.centerIn: parent
        reason: view.viewer.hasSelection ? qsTranslate("Mossbank", "The image may have been moved or removed from the library folder.")
                : qsTranslate("Mossbank", "It was removed from Mossbank while it was open.")
        visible: !scrolling.visible
        width: parent.width - 40
    }
}
