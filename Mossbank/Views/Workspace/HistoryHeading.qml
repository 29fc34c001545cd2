// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// Which day is on show, how much there is of it, and the way to the days beside it.
Item {
    id: heading

    required property Workspace workspace

    implicitHeight: Math.max(title.implicitHeight, Theme.controlHeight)

    Text {
        id: title

        Accessible.name: text
        Accessible.role: Accessible.Heading
        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.ink
        font.pixelSize: Theme.titleType
        font.weight: Font.Bold
        text: heading.workspace.heading
    }
    Text {
        Accessible.name: text
        Accessible.role: Accessible.StaticText
        anchors.baseline: title.baseline
        anchors.left: title.right
        anchors.leftMargin: 12
        anchors.right: days.left
        anchors.rightMargin: 12
        color: Theme.secondaryInk
        elide: Text.ElideRight
        font.pixelSize: Theme.bodyType
        text: heading.workspace.count
    }
    Row {
        id: days

        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        spacing: 12

        ActionButton {
            text: qsTranslate("Mossbank", "Show earlier")
            visible: heading.workspace.canShowEarlier

            onClicked: heading.workspace.showEarlier()
        }
        SymbolButton {
            implicitHeight: Theme.controlHeight
            isFramed: true
            symbol: "chevron-left"
            text: qsTranslate("Mossbank", "Previous day")

            onClicked: heading.workspace.shiftDay(-1)
        }
        ActionButton {
            text: qsTranslate("Mossbank", "Today")

            onClicked: heading.workspace.showToday()
        }
        SymbolButton {
            enabled: !heading.workspace.isToday
            help: heading.workspace.isToday ? qsTranslate("Mossbank", "Today is the newest day") : text
            implicitHeight: Theme.controlHeight
            isFramed: true
            symbol: "chevron-right"
            text: qsTranslate("Mossbank", "Next day")

            onClicked: heading.workspace.shiftDay(1)
        }
    }
}
