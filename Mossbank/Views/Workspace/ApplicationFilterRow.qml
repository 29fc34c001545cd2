// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

// Components within this one are made where its ids are in reach; the linter cannot know it.
// qmllint disable unqualified

/// An application that the list can be held to.
SidebarRow {
    id: row

    required property double hue
    required property string initial
    required isChosen
    required property string name
    required property url picture

    help: qsTranslate("Mossbank", "Show only %1").arg(name)
    showsCheck: true
    text: name

    leading: ApplicationMark {
        hue: row.hue
        initial: row.initial
        picture: row.picture
    }
}
