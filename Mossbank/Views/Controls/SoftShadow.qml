// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

// Components within this one are made where its ids are in reach; the linter cannot know it.
// qmllint disable unqualified

/// A shadow around an item of its size, made of plain rectangles: Qt's own draw nothing where
/// pictures are made in memory.
Item {
    id: shadow

    property real radius: 4

    Accessible.ignored: true

    Repeater {
        model: 5

        Rectangle {
            required property int index

            color: Theme.shadow
            height: shadow.height + 2 * index
            radius: shadow.radius + index
            width: shadow.width + 2 * index
            x: -index
            y: 3 - index * 0.5
        }
    }
}
