// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

// Components within this one are made where its ids are in reach; the linter cannot know it.
// qmllint disable unqualified

/// All screenshots on show in the order of time, the oldest on the left.
ListView {
    id: strip

    objectName: "filmstrip"

    required property Workspace workspace

    Accessible.name: qsTranslate("Mossbank", "Screenshots")
    Accessible.role: Accessible.List
    activeFocusOnTab: true
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    currentIndex: workspace.memories.selectedRow
    height: Math.round(80 + 24 * Theme.scale)
    highlightMoveDuration: 0
    keyNavigationEnabled: false
    leftMargin: 4
    model: workspace.memories
    orientation: ListView.Horizontal
    reuseItems: true
    rightMargin: 20
    spacing: 8

    Keys.onLeftPressed: workspace.viewer.stepBack()
    Keys.onEnterPressed: workspace.viewer.isEnlarged = true
    Keys.onReturnPressed: workspace.viewer.isEnlarged = true
    Keys.onRightPressed: workspace.viewer.stepOn()

    ScrollBar.horizontal: ScrollBar {
    }
    delegate: FilmstripTile {
        required property int index

        hasKeys: ListView.view.activeFocus
        isCurrent: ListView.isCurrentItem

        onClicked: strip.workspace.memories.choose(index)
        onDoubleClicked: strip.workspace.viewer.isEnlarged = true
    }
    header: Item {
        height: 74
        width: earlier.visible ? earlier.width + 12 : 0

        SymbolButton {
            id: earlier

            anchors.left: parent.left
            anchors.verticalCenter: parent.verticalCenter
            help: qsTranslate("Mossbank", "Show earlier screenshots")
            isFramed: true
            showsText: true
            symbol: "chevron-left"
            text: qsTranslate("Mossbank", "Earlier")
            visible: strip.workspace.canShowEarlier

            onClicked: strip.workspace.showEarlier()
        }
    }

    // A wheel that turns up and down is the usual one.
    WheelHandler {
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
        orientation: Qt.Vertical

        onWheel: event => {
            const most = strip.originX + strip.contentWidth + strip.rightMargin - strip.width;
            const wanted = strip.contentX - event.angleDelta.y;
            strip.contentX = Math.max(strip.originX - strip.leftMargin, Math.min(most, wanted));
        }
    }
}
