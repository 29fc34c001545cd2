// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// A line across the window, with something to do about it perhaps.
Rectangle {
    id: banner

    property string action
    property bool canBeDismissed: false
    property string detail
    property bool isWarning: false
    required property string symbol
    property string title

    signal acted
    signal dismissed

    Accessible.name: title.length > 0 ? title + " " + detail : detail
    Accessible.role: isWarning ? Accessible.AlertMessage : Accessible.StaticText
    border.color: isWarning ? Theme.waiting : Theme.line
    color: isWarning ? Theme.card : Theme.accentSoft
    height: Math.max(words.height + 16, Theme.controlHeight + 10)
    radius: Theme.controlRadius

    Symbol {
        id: drawing

        anchors.left: parent.left
        anchors.leftMargin: 12
        anchors.verticalCenter: parent.verticalCenter
        color: banner.isWarning ? Theme.waiting : Theme.accent
        name: banner.symbol
    }
    Row {
        id: words

        anchors.left: drawing.right
        anchors.leftMargin: 10
        anchors.right: buttons.left
        anchors.rightMargin: 12
        anchors.verticalCenter: parent.verticalCenter
        spacing: 8

        Text {
            id: heading

            Accessible.ignored: true
            color: Theme.ink
            font.pixelSize: Theme.bodyType
            font.weight: Font.DemiBold
            text: banner.title
            visible: text.length > 0
        }
        Text {
            Accessible.ignored: true
            color: Theme.ink
            font.pixelSize: Theme.bodyType
            text: banner.detail
            textFormat: Text.PlainText
            width: parent.width - (heading.visible ? heading.width + parent.spacing : 0)
            wrapMode: Text.Wrap
        }
    }
    Row {
        id: buttons

        anchors.right: parent.right
        anchors.rightMargin: 6
        anchors.verticalCenter: parent.verticalCenter
        spacing: 6

        ActionButton {
            implicitHeight: Theme.rowHeight
            text: banner.action
            visible: text.length > 0

            onClicked: banner.acted()
        }
        SymbolButton {
            symbol: "cross"
            text: qsTranslate("Mossbank", "Dismiss error")
            visible: banner.canBeDismissed

            onClicked: banner.dismissed()
        }
    }
}
