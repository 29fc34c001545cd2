// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

// Components within this one are made where its ids are in reach; the linter cannot know it.
// qmllint disable unqualified

/// What the history on show can be held to: a day, an application. At its foot, how large it is.
Rectangle {
    id: panel

    required property Workspace workspace

    color: Theme.panel
    width: 224

    Rectangle {
        anchors.bottom: parent.bottom
        anchors.right: parent.right
        anchors.top: parent.top
        color: Theme.line
        width: 1
    }
    Flickable {
        id: scrolling

        anchors.bottom: foot.top
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        contentHeight: column.height + 28

        ScrollBar.vertical: ScrollBar {
        }

        Column {
            id: column

            width: 199
            x: 12
            y: 14

            LensPicker {
                sidebar: panel.workspace.sidebar
                width: parent.width
            }
            Item {
                height: 10
                width: 1
            }
            CalendarPanel {
                month: panel.workspace.calendar
                width: parent.width
                workspace: panel.workspace
            }
            Item {
                height: 14
                width: 1
            }
            SidebarRow {
                count: panel.workspace.sidebar.countToday
                isChosen: panel.workspace.sidebar.isToday
                symbol: "sun"
                text: qsTranslate("Mossbank", "Today")
                width: parent.width

                onClicked: panel.workspace.sidebar.showToday()
            }
            SidebarRow {
                count: panel.workspace.sidebar.countOfAll
                isChosen: panel.workspace.sidebar.isAllHistory
                symbol: "clock"
                text: qsTranslate("Mossbank", "All history")
                width: parent.width

                onClicked: panel.workspace.sidebar.showAllHistory()
            }
            Text {
                Accessible.name: text
                Accessible.role: Accessible.Heading
                bottomPadding: 4
                color: Theme.tertiaryInk
                font.pixelSize: Theme.smallType
                font.weight: Font.DemiBold
                leftPadding: 8
                text: qsTranslate("Mossbank", "Applications")
                topPadding: 14
            }
            SidebarRow {
                help: qsTranslate("Mossbank", "Show every application")
                isChosen: panel.workspace.applications.isAll
                symbol: "grid"
                text: qsTranslate("Mossbank", "All applications")
                width: parent.width

                onClicked: panel.workspace.applications.chooseAll()
            }
            Repeater {
                model: panel.workspace.applications

                ApplicationFilterRow {
                    required property int index

                    width: column.width

                    onClicked: panel.workspace.applications.choose(index)
                }
            }
        }
    }
    SidebarFoot {
        id: foot

        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.leftMargin: 12
        anchors.right: parent.right
        anchors.rightMargin: 13
        sidebar: panel.workspace.sidebar
    }
}
