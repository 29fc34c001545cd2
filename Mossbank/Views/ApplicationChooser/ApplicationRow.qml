// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Mossbank.Views

/// A row of the list of installed applications.
T.ItemDelegate {
    id: row

    required property string identity
    required property string initial
    required property bool isCurrent
    required property string name
    required property url picture

    Accessible.name: name
    Accessible.role: Accessible.ListItem
    Accessible.selectable: true
    Accessible.selected: isCurrent
    implicitHeight: Math.round(44 * Theme.scale)
    leftPadding: 12
    rightPadding: 12

    background: Rectangle {
        color: row.isCurrent ? Theme.accentSoft : row.hovered ? Theme.background : "transparent"
        radius: Theme.rowRadius
    }
    contentItem: ApplicationLabel {
        identity: row.identity
        initial: row.initial
        isCurrent: row.isCurrent
        name: row.name
        picture: row.picture
    }

    Accessible.onPressAction: row.clicked()
}
