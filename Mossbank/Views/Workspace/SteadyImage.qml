// SPDX-License-Identifier: Apache-2.0
import QtQuick

/// A picture at its full size, which is shown until the one that is asked for next has been read.
Item {
    id: image

    required property url source

    /// Pixels of the picture on show. Empty where there is none.
    readonly property size pixels: Qt.size(shown.implicitWidth, shown.implicitHeight)
    /// There is no such picture, or it cannot be read.
    readonly property bool isMissing: shown.status === Image.Ready && shown.implicitWidth === 0

    property Image shown: first

    function turn(next) {
        if (next === shown || next.source !== source || next.status === Image.Loading)
            return;
        const before = shown;
        shown = next;
        before.source = "";
    }

    onSourceChanged: (shown === first ? second : first).source = source

    component Picture: Image {
        anchors.fill: parent
        asynchronous: true
        cache: false
        visible: image.shown === this

        onStatusChanged: image.turn(this)
    }

    Picture {
        id: first
    }
    Picture {
        id: second
    }
}
