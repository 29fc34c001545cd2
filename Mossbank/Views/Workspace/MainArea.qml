// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

// Components within this one are made where its ids are in reach; the linter cannot know it.
// qmllint disable unqualified

/// Banners, the heading, and what there is under it.
Item {
    id: area

    required property Workspace workspace

    Banners {
        id: banners

        anchors.left: parent.left
        anchors.leftMargin: 20
        anchors.right: parent.right
        anchors.rightMargin: 20
        anchors.top: parent.top
        anchors.topMargin: height > 0 ? 14 : 0
        workspace: area.workspace
    }
    HistoryHeading {
        id: heading

        anchors.left: parent.left
        anchors.leftMargin: 20
        anchors.right: parent.right
        anchors.rightMargin: 20
        anchors.top: banners.bottom
        anchors.topMargin: 12
        height: visible ? implicitHeight : 0
        visible: area.workspace.content !== Workspace.FirstRun
        workspace: area.workspace
    }
    Loader {
        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.leftMargin: 20
        anchors.right: parent.right
        anchors.top: heading.bottom
        anchors.topMargin: 10
        sourceComponent: {
            switch (area.workspace.content) {
            case Workspace.FirstRun:
                return firstRun;
            case Workspace.Loading:
                return loading;
            case Workspace.Empty:
                return empty;
            case Workspace.Results:
                return results;
            default:
                return moments;
            }
        }
    }
    Component {
        id: firstRun

        FirstRunView {
            firstRun: area.workspace.firstRun
        }
    }
    Component {
        id: loading

        Item {
            Text {
                Accessible.name: text
                Accessible.role: Accessible.StaticText
                anchors.centerIn: parent
                color: Theme.secondaryInk
                font.pixelSize: Theme.bodyType
                text: qsTranslate("Mossbank", "Looking through your history…")
            }
        }
    }
    Component {
        id: empty

        EmptyStateView {
            emptyState: area.workspace.emptyState
        }
    }
    Component {
        id: results

        ResultsView {
            workspace: area.workspace
        }
    }
    Component {
        id: moments

        MomentsView {
            workspace: area.workspace
        }
    }
}
