// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// Around the control that has the keyboard.
Rectangle {
    anchors.fill: parent
    anchors.margins: -3
    border.color: Theme.accent
    border.width: 2
    color: "transparent"
    radius: Theme.controlRadius + 3
}
