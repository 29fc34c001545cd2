// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// One screenshot at a time, over the strip of all.
Item {
    id: view

    required property Workspace workspace

    ViewerCard {
        anchors.bottom: strip.top
        anchors.bottomMargin: 10
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.rightMargin: 20
        anchors.top: parent.top
        workspace: view.workspace
    }
    Filmstrip {
        id: strip

        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        workspace: view.workspace
    }
}
