// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// Every word that was read in the selected screenshot, what is looked for marked in it.
Rectangle {
    id: pane

    required property Workspace workspace

    color: Theme.card
    radius: Theme.cardRadius - 1

    // Square where it meets the toolbar.
    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        color: Theme.card
        height: Theme.cardRadius
    }
    Rectangle {
        anchors.bottom: parent.bottom
        anchors.bottomMargin: -1
        anchors.left: parent.left
        anchors.top: parent.top
        color: Theme.line
        width: 1
    }
    Text {
        id: heading

        Accessible.name: text
        Accessible.role: Accessible.Heading
        anchors.left: parent.left
        anchors.leftMargin: 15
        anchors.verticalCenter: copying.verticalCenter
        color: Theme.secondaryInk
        font.pixelSize: Theme.detailType
        font.weight: Font.DemiBold
        text: qsTranslate("Mossbank", "Recognized text")
    }
    SymbolButton {
        id: copying

        anchors.right: parent.right
        anchors.rightMargin: 6
        anchors.top: parent.top
        anchors.topMargin: 6
        enabled: pane.workspace.viewer.text.length > 0
        help: qsTranslate("Mossbank", "Copy every word Mossbank read from this screenshot")
        symbol: "copy"
        text: qsTranslate("Mossbank", "Copy text")

        onClicked: pane.workspace.viewer.copyText()
    }
    Text {
        Accessible.name: text
        Accessible.role: Accessible.StaticText
        anchors.left: parent.left
        anchors.leftMargin: 15
        anchors.right: parent.right
        anchors.rightMargin: 12
        anchors.top: copying.bottom
        anchors.topMargin: 4
        color: Theme.secondaryInk
        font.pixelSize: Theme.bodyType
        text: qsTranslate("Mossbank", "No readable text was found in this screenshot.")
        visible: pane.workspace.viewer.text.length === 0
        wrapMode: Text.Wrap
    }
    Flickable {
        id: scrolling

        anchors.bottom: parent.bottom
        anchors.bottomMargin: 8
        anchors.left: parent.left
        anchors.leftMargin: 15
        anchors.right: parent.right
        anchors.rightMargin: 4
        anchors.top: copying.bottom
        anchors.topMargin: 4
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        contentHeight: words.height
        contentWidth: width

        ScrollBar.vertical: ScrollBar {
        }

        TextEdit {
            id: words

            Accessible.name: heading.text
            Accessible.readOnly: true
            Accessible.role: Accessible.EditableText
            activeFocusOnTab: true
            color: Theme.ink
            font.pixelSize: Theme.bodyType
            readOnly: true
            selectByKeyboard: true
            selectByMouse: true
            selectedTextColor: Theme.accentInk
            selectionColor: Theme.accent
            text: pane.workspace.viewer.text
            textFormat: TextEdit.PlainText
            width: parent.width - 10
            wrapMode: TextEdit.Wrap

            onCursorRectangleChanged: {
                if (cursorRectangle.y < scrolling.contentY)
                    scrolling.contentY = cursorRectangle.y;
                else if (cursorRectangle.y + cursorRectangle.height > scrolling.contentY + scrolling.height)
                    scrolling.contentY = cursorRectangle.y + cursorRectangle.height - scrolling.height;
            }
            onTextChanged: scrolling.contentY = 0
        }
    }
    FocusFrame {
        anchors.fill: scrolling
        radius: Theme.rowRadius
        visible: words.activeFocus
    }
    MatchMarker {
        markColor: Theme.mark
        markedColor: Theme.markInk
        query: pane.workspace.query
        textDocument: words.textDocument
    }
}
