// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Mossbank.Views

// Components within this one are made where its ids are in reach; the linter cannot know it.
// qmllint disable unqualified

/// The main window: where history is searched and looked at.
Window {
    id: window

    readonly property bool isCovered: enlarged.item !== null || question.item !== null
    /// What had the keys before something lay over all the rest, and how it had come by them.
    property Item lastFocus: null
    property int lastReason: Qt.OtherFocusReason
    /// What lies over all the rest. Null where nothing does.
    readonly property QtObject sheet: (enlarged.item ?? question.item)?.card ?? null
    required property Workspace workspace

    color: Theme.background
    height: 820
    minimumHeight: Math.round(560 * Theme.scale)
    minimumWidth: Math.round(860 * Theme.scale)
    objectName: "workspace"
    title: "Mossbank"
    width: 1240

    function giveFocusBack() {
        if (!isCovered && lastFocus)
            lastFocus.forceActiveFocus(lastReason);
    }

    onActiveFocusItemChanged: if (!isCovered && activeFocusItem) {
        lastFocus = activeFocusItem;
        lastReason = (activeFocusItem as T.Control)?.focusReason ?? Qt.OtherFocusReason;
    }
    // When what was covered can have it again.
    onIsCoveredChanged: if (!isCovered)
        givingBack.start()

    Timer {
        id: givingBack

        interval: 0

        onTriggered: window.giveFocusBack()
    }
    Binding {
        property: "reducesMotion"
        target: Theme
        value: window.workspace.reducesMotion
    }
    Binding {
        property: "isInFront"
        target: window.workspace.firstRun
        value: window.active
    }
    WorkspaceShortcuts {
        isCovered: window.isCovered
        workspace: window.workspace

        onFocusesSearch: top.focusSearch()
        onCloses: window.close()
    }
    TopBar {
        id: top

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        enabled: !window.isCovered
        searchFieldX: side.width + 14
        workspace: window.workspace
    }
    SidebarPanel {
        id: side

        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.top: top.bottom
        enabled: !window.isCovered
        workspace: window.workspace
    }
    MainArea {
        anchors.bottom: parent.bottom
        anchors.left: side.right
        anchors.right: parent.right
        anchors.top: top.bottom
        enabled: !window.isCovered
        workspace: window.workspace
    }
    Loader {
        id: enlarged

        active: window.workspace.viewer.isEnlarged
        anchors.fill: parent

        sourceComponent: ScreenshotZoomView {
            workspace: window.workspace
        }

        onLoaded: (item as Item).forceActiveFocus(window.lastReason)
    }
    Loader {
        id: question

        active: window.workspace.asksToDelete
        anchors.fill: parent

        sourceComponent: DeleteQuestion {
            workspace: window.workspace
        }

        onLoaded: (item as Item).forceActiveFocus(window.lastReason)
    }
}
