// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Mossbank.Views

/// One of the choices of a menu.
T.MenuItem {
    id: item

    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.name: text
    Accessible.role: Accessible.MenuItem
    font.pixelSize: Theme.bodyType
    implicitHeight: Theme.rowHeight
    implicitWidth: 172
    leftPadding: 10
    rightPadding: 10

    background: Rectangle {
        color: item.highlighted ? Theme.accentSoft : "transparent"
        radius: Theme.rowRadius
    }
    contentItem: Item {
        Text {
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.ink
            font: item.font
            text: item.text
            textFormat: Text.PlainText
        }
        Symbol {
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.accent
            name: "check"
            visible: item.checked
        }
    }

    Accessible.onPressAction: triggered()
}
