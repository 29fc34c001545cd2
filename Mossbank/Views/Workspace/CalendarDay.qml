// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Mossbank.Views

/// A day of a month. A cell without a number is of another month.
T.AbstractButton {
    id: day

    /// The keys come here when this is the day that they have chosen.
    required property bool followsKeys
    required property bool isChosen
    required property bool isFuture
    required property bool isTabStop
    required property bool isToday
    required property int number
    required property double share
    required property string spoken
    readonly property bool isDay: number > 0

    Accessible.checkable: true
    Accessible.checked: isChosen
    Accessible.ignored: !isDay
    Accessible.name: spoken
    // One of them is reached by the tab key, and the others from there by the arrows.
    focusPolicy: isTabStop || activeFocus ? Qt.StrongFocus : Qt.ClickFocus
    enabled: isDay && !isFuture
    hoverEnabled: isDay

    background: Rectangle {
        anchors.fill: parent
        anchors.margins: 1
        border.color: day.isToday && !day.isChosen ? Theme.accent : "transparent"
        color: day.isChosen ? Theme.accent : day.hovered ? Theme.accentSoft : "transparent"
        radius: Theme.rowRadius

        FocusFrame {
            anchors.margins: -4
            visible: day.visualFocus
        }
    }
    contentItem: Item {
        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.verticalCenter: parent.verticalCenter
            anchors.verticalCenterOffset: -2
            color: day.isChosen ? Theme.accentInk : day.share > 0 ? Theme.ink : day.hovered ? Theme.secondaryInk : Theme.tertiaryInk
            font.pixelSize: Theme.smallType
            font.weight: day.isToday ? Font.DemiBold : Font.Normal
            text: day.isDay ? day.number : ""
        }
        Rectangle {
            anchors.bottom: parent.bottom
            anchors.bottomMargin: 3
            anchors.horizontalCenter: parent.horizontalCenter
            color: day.isChosen ? Theme.accentInk : Theme.accent
            height: 3
            opacity: day.isChosen ? 1 : 0.55
            radius: 1.5
            visible: day.share > 0
            width: Math.round(4 + 10 * day.share)
        }
    }

    Accessible.onPressAction: if (enabled)
        clicked()
    Keys.onEnterPressed: clicked()
    Keys.onReturnPressed: clicked()
    onIsChosenChanged: if (isChosen && followsKeys)
        forceActiveFocus(Qt.TabFocusReason)

    HelpTip {
        text: day.spoken
        visible: day.hovered && text.length > 0
    }
}
