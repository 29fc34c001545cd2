// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

// Components within this one are made where its ids are in reach; the linter cannot know it.
// qmllint disable unqualified

/// How the history is shown.
Rectangle {
    id: picker

    required property Sidebar sidebar

    Accessible.description: qsTranslate("Mossbank", "How history is shown")
    Accessible.name: qsTranslate("Mossbank", "How history is shown")
    Accessible.role: Accessible.Grouping
    border.color: Theme.line
    color: Theme.background
    height: Theme.controlHeight + 2
    radius: Theme.controlRadius

    Row {
        anchors.fill: parent
        anchors.margins: 2

        Repeater {
            id: segments

            model: picker.sidebar.lenses

            LensSegment {
                required property int index

                height: parent.height
                width: Math.floor(parent.width / segments.count)

                onClicked: picker.sidebar.chooseLens(index)
            }
        }
    }
}
