// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// What the user is to know before anything else.
Column {
    id: banners

    required property Workspace workspace

    spacing: 8

    Banner {
        detail: qsTranslate("Mossbank", "Fictional screens for exploring Mossbank. Recording is disabled.")
        symbol: "sparkle"
        title: qsTranslate("Mossbank", "Sample history")
        visible: banners.workspace.isDemo
        width: parent.width
    }
    Banner {
        action: qsTranslate("Mossbank", "Got it")
        detail: qsTranslate("Mossbank", "Search a word you can see in that screenshot — that is the whole idea.")
        symbol: "search"
        visible: banners.workspace.showsSearchHint
        width: parent.width

        onActed: banners.workspace.dismissSearchHint()
    }
    Banner {
        action: banners.workspace.isPermissionMissing ? qsTranslate("Mossbank", "Permissions") : ""
        canBeDismissed: true
        detail: banners.workspace.errorMessage
        isWarning: true
        symbol: "warning"
        visible: banners.workspace.errorMessage.length > 0
        width: parent.width

        onActed: banners.workspace.openPermissions()
        onDismissed: banners.workspace.dismissError()
    }
}
