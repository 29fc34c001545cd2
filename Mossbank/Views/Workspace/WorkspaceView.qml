// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

// Components within this one are made where its ids are in reach; the linter cannot know it.
// qmllint disable unqualified

/// The main window: where history is searched and looked at.
Window {
    id: window

    /// What lies over all the rest. Null where nothing does.
    readonly property QtObject sheet: enlarged.item ?? question.item
    required property Workspace workspace

    color: Theme.background
    height: 820
    minimumHeight: 560
    minimumWidth: 860
    objectName: "workspace"
    title: "Mossbank"
    width: 1240

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
        workspace: window.workspace

        onFocusesSearch: top.focusSearch()
        onCloses: window.close()
    }
    TopBar {
        id: top

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        searchFieldX: side.width + 14
        workspace: window.workspace
    }
    SidebarPanel {
        id: side

        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.top: top.bottom
        workspace: window.workspace
    }
    MainArea {
        anchors.bottom: parent.bottom
        anchors.left: side.right
        anchors.right: parent.right
        anchors.top: top.bottom
        workspace: window.workspace
    }
    Loader {
        id: enlarged

        active: window.workspace.viewer.isEnlarged
        anchors.fill: parent

        sourceComponent: ScreenshotZoomView {
            workspace: window.workspace
        }
    }
    Loader {
        id: question

        active: window.workspace.asksToDelete
        anchors.fill: parent

        sourceComponent: DeleteQuestion {
            workspace: window.workspace
        }
    }
}
