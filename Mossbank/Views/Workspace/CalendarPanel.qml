// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

// Components within this one are made where its ids are in reach; the linter cannot know it.
// qmllint disable unqualified

/// A month, each day with a bar for how much there is of it. The arrow keys go from day to day.
FocusScope {
    id: panel

    required property CalendarMonth month
    required property Workspace workspace
    readonly property real cellWidth: width / 7
    readonly property int cellHeight: Math.round(28 * Theme.scale)

    height: days.y + days.height

    /// The keys are on their way from one day to another.
    property bool isGoing: false

    function go(days) {
        isGoing = true;
        workspace.shiftDay(days);
        isGoing = false;
    }

    Text {
        id: title

        Accessible.name: text
        Accessible.role: Accessible.Heading
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.verticalCenter: previous.verticalCenter
        color: Theme.ink
        font.pixelSize: Theme.bodyType
        font.weight: Font.DemiBold
        text: panel.month.title
    }
    SymbolButton {
        id: previous

        anchors.left: parent.left
        anchors.leftMargin: -4
        symbol: "chevron-left"
        text: qsTranslate("Mossbank", "Previous month")

        onClicked: panel.month.showPrevious()
    }
    SymbolButton {
        anchors.right: parent.right
        anchors.rightMargin: -4
        enabled: panel.month.hasNext
        symbol: "chevron-right"
        text: qsTranslate("Mossbank", "Next month")

        onClicked: panel.month.showNext()
    }
    Row {
        id: week

        anchors.top: previous.bottom
        anchors.topMargin: 4

        Repeater {
            model: panel.month.weekdays

            Text {
                required property string modelData

                Accessible.ignored: true
                color: Theme.tertiaryInk
                font.pixelSize: Theme.smallType
                horizontalAlignment: Text.AlignHCenter
                text: modelData
                width: panel.cellWidth
            }
        }
    }
    Grid {
        id: days

        anchors.top: week.bottom
        anchors.topMargin: 2
        columns: 7

        Keys.onDownPressed: panel.go(7)
        Keys.onLeftPressed: panel.go(-1)
        Keys.onRightPressed: panel.go(1)
        Keys.onUpPressed: panel.go(-7)

        Repeater {
            model: panel.month

            CalendarDay {
                required property int index

                followsKeys: panel.isGoing
                height: panel.cellHeight
                width: panel.cellWidth

                onClicked: panel.month.choose(index)
            }
        }
    }
}
