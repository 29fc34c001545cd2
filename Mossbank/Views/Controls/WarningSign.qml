// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// Tells at a glance that something is at stake. Whatever stands beside it says what.
Rectangle {
    Accessible.ignored: true
    color: Theme.waiting
    height: width
    radius: width / 2
    width: Math.round(28 * Theme.scale)

    Text {
        anchors.centerIn: parent
        color: Theme.waitingInk
        font.pixelSize: Math.round(parent.height * 0.64)
        font.weight: Font.Bold
        text: "!"
    }
}
