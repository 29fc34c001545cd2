// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// Light, dark, or as the desktop has it.
SymbolButton {
    id: picker

    required property Sidebar sidebar

    symbol: "contrast"
    text: sidebar.appearanceLabel

    onClicked: menu.open()

    ChoiceMenu {
        id: menu

        choices: picker.sidebar.appearances
        x: picker.width - width
        y: -height - 6

        onChosen: number => picker.sidebar.chooseAppearance(number)
    }
}
