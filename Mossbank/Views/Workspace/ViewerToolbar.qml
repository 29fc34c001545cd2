// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// What the selected screenshot is of, and what can be done with it.
Item {
    id: toolbar

    required property Workspace workspace
    readonly property Viewer viewer: workspace.viewer

    height: Math.max(42, Theme.rowHeight + 12)

    Row {
        id: steps

        anchors.left: parent.left
        anchors.leftMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        spacing: 2

        SymbolButton {
            enabled: toolbar.viewer.canStepBack
            help: qsTranslate("Mossbank", "Previous screenshot · ⌘←")
            symbol: "chevron-left"
            text: qsTranslate("Mossbank", "Previous screenshot")

            onClicked: toolbar.viewer.stepBack()
        }
        SymbolButton {
            enabled: toolbar.viewer.canStepOn
            help: qsTranslate("Mossbank", "Next screenshot · ⌘→")
            symbol: "chevron-right"
            text: qsTranslate("Mossbank", "Next screenshot")

            onClicked: toolbar.viewer.stepOn()
        }
    }
    Item {
        id: words

        anchors.left: steps.right
        anchors.leftMargin: 12
        anchors.right: actions.left
        anchors.rightMargin: 12
        anchors.verticalCenter: parent.verticalCenter
        height: title.height

        Text {
            id: title

            Accessible.name: text
            Accessible.role: Accessible.Heading
            color: Theme.ink
            elide: Text.ElideRight
            font.pixelSize: Theme.bodyType
            font.weight: Font.DemiBold
            text: toolbar.viewer.title
            textFormat: Text.PlainText
            width: Math.max(0, Math.min(implicitWidth, words.width - time.implicitWidth - 8))
        }
        Text {
            id: time

            Accessible.name: text
            Accessible.role: Accessible.StaticText
            anchors.baseline: title.baseline
            anchors.left: title.right
            anchors.leftMargin: 8
            color: Theme.tertiaryInk
            elide: Text.ElideRight
            font.pixelSize: Theme.bodyType
            text: toolbar.viewer.time
            width: Math.max(0, Math.min(implicitWidth, words.width - title.width - 8))
        }
    }
    Row {
        id: actions

        anchors.right: parent.right
        anchors.rightMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        spacing: 2

        SymbolButton {
            help: qsTranslate("Mossbank", "Open %1").arg(toolbar.viewer.link)
            symbol: "globe"
            text: qsTranslate("Mossbank", "Open the page this screenshot was taken from")
            visible: toolbar.viewer.link.length > 0

            onClicked: toolbar.viewer.openLink()
        }
        SymbolButton {
            symbol: "expand"
            text: qsTranslate("Mossbank", "Enlarge screenshot")

            onClicked: toolbar.viewer.isEnlarged = true
        }
        SymbolButton {
            isOn: toolbar.workspace.showsText
            symbol: "text"
            text: toolbar.workspace.showsText ? qsTranslate("Mossbank", "Hide recognized text")
                                              : qsTranslate("Mossbank", "Show recognized text")

            onClicked: toolbar.workspace.showsText = !toolbar.workspace.showsText
        }
        SymbolButton {
            symbol: "copy"
            text: qsTranslate("Mossbank", "Copy image")

            onClicked: toolbar.viewer.copyImage()
        }
        SymbolButton {
            symbol: "folder"
            text: qsTranslate("Mossbank", "Show in Finder")

            onClicked: toolbar.viewer.showInFolder()
        }
        SymbolButton {
            symbol: "trash"
            text: qsTranslate("Mossbank", "Delete screenshot")

            onClicked: toolbar.workspace.asksToDelete = true
        }
    }
}
