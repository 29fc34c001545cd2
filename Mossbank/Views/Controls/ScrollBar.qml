// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Mossbank.Views

/// How far a list has been scrolled.
T.ScrollBar {
    id: bar

    implicitHeight: 8
    implicitWidth: 8
    visible: size < 1

    contentItem: Rectangle {
        color: bar.pressed || bar.hovered ? Theme.tertiaryInk : Theme.line
        implicitHeight: 8
        implicitWidth: 8
        radius: 4
    }
}
