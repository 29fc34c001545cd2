// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Mossbank.Views

/// What a control is for, while the mouse rests on it.
T.ToolTip {
    id: tip

    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent | T.Popup.CloseOnReleaseOutsideParent
    delay: 600
    font.pixelSize: Theme.detailType
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    implicitWidth: Math.min(implicitContentWidth + leftPadding + rightPadding, 360)
    margins: 6
    horizontalPadding: 10
    verticalPadding: 6
    y: parent ? parent.height + 6 : 0
    x: parent ? Math.round((parent.width - width) / 2) : 0

    background: Rectangle {
        border.color: Theme.line
        color: Theme.card
        radius: Theme.rowRadius
    }
    contentItem: Text {
        color: Theme.ink
        font: tip.font
        text: tip.text
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
    }
}
