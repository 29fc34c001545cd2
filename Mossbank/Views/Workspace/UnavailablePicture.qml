// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// Stands where a screenshot would, and says why it does not.
Column {
    id: sign

    required property string reason

    spacing: 6

    Symbol {
        anchors.horizontalCenter: parent.horizontalCenter
        color: Theme.tertiaryInk
        name: "photo"
        size: Math.round(32 * Theme.scale)
    }
    Text {
        Accessible.name: text
        Accessible.role: Accessible.StaticText
        color: Theme.ink
        font.pixelSize: Theme.headingType
        font.weight: Font.DemiBold
        horizontalAlignment: Text.AlignHCenter
        text: qsTranslate("Mossbank", "Screenshot unavailable")
        width: parent.width
        wrapMode: Text.Wrap
    }
    Text {
        Accessible.name: text
        Accessible.role: Accessible.StaticText
        color: Theme.secondaryInk
        font.pixelSize: Theme.bodyType
        horizontalAlignment: Text.AlignHCenter
        text: sign.reason
        width: parent.width
        wrapMode: Text.Wrap
    }
}
