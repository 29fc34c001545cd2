// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

// Components within this one are made where its ids are in reach; the linter cannot know it.
// qmllint disable unqualified

/// What was found, beside the one that is looked at.
Item {
    id: view

    required property Workspace workspace

    ListView {
        id: list

        Accessible.name: qsTranslate("Mossbank", "Matches")
        Accessible.role: Accessible.List
        activeFocusOnTab: true
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 16
        anchors.left: parent.left
        anchors.top: parent.top
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        currentIndex: view.workspace.memories.selectedRow
        highlightMoveDuration: 0
        keyNavigationEnabled: false
        model: view.workspace.memories
        reuseItems: true
        spacing: 6
        width: Math.min(346, Math.round(view.width * 0.4))

        Keys.onDownPressed: view.workspace.viewer.stepBack()
        Keys.onEnterPressed: view.workspace.viewer.isEnlarged = true
        Keys.onReturnPressed: view.workspace.viewer.isEnlarged = true
        Keys.onUpPressed: view.workspace.viewer.stepOn()

        ScrollBar.vertical: ScrollBar {
        }
        delegate: ResultRow {
            required property int index

            hasKeys: ListView.view.activeFocus
            isCurrent: ListView.isCurrentItem
            query: view.workspace.memories.query
            width: ListView.view.width - 8

            onClicked: view.workspace.memories.choose(index)
            onDoubleClicked: view.workspace.viewer.isEnlarged = true
        }
        footer: Item {
            height: more.visible ? more.height + 20 : 0
            width: ListView.view.width

            ActionButton {
                id: more

                anchors.centerIn: parent
                text: qsTranslate("Mossbank", "Show earlier matches")
                visible: view.workspace.canShowEarlier

                onClicked: view.workspace.showEarlier()
            }
        }
    }
    ViewerCard {
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 16
        anchors.left: list.right
        anchors.leftMargin: 10
        anchors.right: parent.right
        anchors.rightMargin: 20
        anchors.top: parent.top
        workspace: view.workspace
    }
}
