// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Mossbank.Views

/// Some choices, one of which is made.
T.Menu {
    id: menu

    /// Of `Choice`.
    required property var choices

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
}
