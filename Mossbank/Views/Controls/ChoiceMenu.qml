// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Mossbank.Views

/// Some choices, one of which is made.
T.Menu {
    id: menu

    /// Of `Choice`.
    required property var choices
    /// What had the keys before, and how it had come by them.
    property Item lastFocus: null
    property int lastReason: Qt.OtherFocusReason

    signal chosen(int number)

    implicitHeight: contentHeight + topPadding + bottomPadding
    implicitWidth: 180
    margins: 6
    padding: 4

    background: Rectangle {
        border.color: Theme.line
        color: Theme.card
        radius: Theme.controlRadius
    }
    contentItem: ListView {
        currentIndex: menu.currentIndex
        implicitHeight: contentHeight
        interactive: false
        model: menu.contentModel
    }

    Instantiator {
        model: menu.choices

        delegate: ChoiceMenuItem {
            required property int index
            required property choice modelData

            checked: modelData.isChosen
            text: modelData.label

            // What is chosen may be written in other items then, and the menu would not know that
            // one was pressed.
            onTriggered: {
                menu.close();
                menu.chosen(index); // qmllint disable type
            }
        }

        onObjectAdded: (index, object) => menu.insertItem(index, object)
        onObjectRemoved: (index, object) => menu.removeItem(object)
    }

    onAboutToShow: {
        lastFocus = parent.Window.activeFocusItem;
        lastReason = (lastFocus as T.Control)?.focusReason ?? Qt.OtherFocusReason;
    }
    // A menu leaves the keys to the bare window, where nobody sees them.
    onClosed: if (lastFocus && parent.Window.activeFocusItem === parent.Window.contentItem)
        lastFocus.forceActiveFocus(lastReason)
}
