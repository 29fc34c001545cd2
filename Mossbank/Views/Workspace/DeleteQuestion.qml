// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// Asks before a screenshot goes for good.
Sheet {
    id: question

    required property Workspace workspace

    cardHeight: message.height + detail.height + Theme.controlHeight + 72
    cardWidth: Math.min(Math.round(420 * Theme.scale), width - 40)
    name: message.text

    onDismissed: workspace.asksToDelete = false

    WarningSign {
        id: sign

        anchors.left: parent.left
        anchors.leftMargin: 20
        anchors.top: parent.top
        anchors.topMargin: 20
    }
    Text {
        id: message

        Accessible.name: text
        Accessible.role: Accessible.Heading
        anchors.left: sign.right
        anchors.leftMargin: 14
        anchors.right: parent.right
        anchors.rightMargin: 20
        anchors.top: parent.top
        anchors.topMargin: 20
        color: Theme.ink
        font.pixelSize: Theme.headingType
        font.weight: Font.DemiBold
        text: qsTranslate("Mossbank", "Delete this screenshot?")
        wrapMode: Text.Wrap
    }
    Text {
        id: detail

        Accessible.name: text
        Accessible.role: Accessible.StaticText
        anchors.left: message.left
        anchors.right: message.right
        anchors.top: message.bottom
        anchors.topMargin: 8
        color: Theme.secondaryInk
        font.pixelSize: Theme.bodyType
        lineHeight: 1.2
        text: qsTranslate("Mossbank", "The image and its recognized text will be permanently removed from Mossbank.")
        wrapMode: Text.Wrap
    }
    ActionButton {
        id: deleting

        KeyNavigation.tab: cancelling
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 16
        anchors.right: cancelling.left
        anchors.rightMargin: 8
        text: qsTranslate("Mossbank", "Delete Screenshot")

        onClicked: {
            question.workspace.asksToDelete = false;
            question.workspace.viewer.remove();
        }
    }
    ActionButton {
        id: cancelling

        KeyNavigation.tab: deleting
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 16
        anchors.right: parent.right
        anchors.rightMargin: 16
        focus: true
        isMain: true
        text: qsTranslate("Mossbank", "Cancel")

        onClicked: question.workspace.asksToDelete = false
    }
}
