// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// A small picture of a screenshot, flat until it is there.
Rectangle {
    id: thumbnail

    required property url picture

    Accessible.ignored: true
    color: Theme.pictureless
    radius: 4

    Image {
        anchors.fill: parent
        asynchronous: true
        // The provider remembers better, and within bounds.
        cache: false
        fillMode: Image.PreserveAspectCrop
        source: thumbnail.picture
    }
}
