// SPDX-License-Identifier: Apache-2.0
pragma Singleton

import QtQuick

/// The colours and sizes of every window.
QtObject {
    readonly property SystemPalette desktop: SystemPalette {
    }
    readonly property bool isDark: desktop.window.hslLightness < 0.5

    readonly property color background: isDark ? "#191b18" : "#f6f5f1"
    readonly property color panel: isDark ? "#1f221e" : "#fbfaf7"
    readonly property color card: isDark ? "#262a25" : "#ffffff"
    readonly property color line: isDark ? "#343931" : "#e4e1d8"
    readonly property color ink: isDark ? "#ecece4" : "#23261f"
    readonly property color secondaryInk: isDark ? "#b4b8ac" : "#565a50"
    readonly property color tertiaryInk: isDark ? "#9a9f93" : "#6b6f64"
    readonly property color accent: isDark ? "#8fc3a0" : "#3f6b4f"
    readonly property color accentSoft: isDark ? "#2c3a30" : "#e3ece4"
    /// What is written on the accent.
    readonly property color accentInk: isDark ? "#191b18" : "#ffffff"

    /// Recording is on.
    readonly property color live: isDark ? "#ef6a5f" : "#c8453b"
    /// What was looked for, and what is written on it.
    readonly property color mark: isDark ? "#6b5a1e" : "#f6e3a1"
    readonly property color markInk: ink
    /// Behind a picture that is not there.
    readonly property color pictureless: isDark ? "#2b302a" : "#e9e6de"
    /// Under what lies over the rest.
    readonly property color shadow: isDark ? "#24000000" : "#0a23261f"
    readonly property color veil: isDark ? "#b0000000" : "#80202420"

    /// What the user should stop at, and what is written on it.
    readonly property color waiting: isDark ? "#e0a83e" : "#c98a1b"
    readonly property color waitingInk: isDark ? "#191b18" : "#23261f"

    /// The desktop's own size of type, beside the usual one of ten points.
    readonly property real scale: Application.font.pointSize > 0 ? Application.font.pointSize / 10 : 1
    readonly property int smallType: Math.round(11 * scale)
    readonly property int detailType: Math.round(12 * scale)
    readonly property int bodyType: Math.round(13 * scale)
    readonly property int headingType: Math.round(15 * scale)
    readonly property int titleType: Math.round(20 * scale)
    readonly property int displayType: Math.round(26 * scale)

    readonly property int rowRadius: 7
    readonly property int controlRadius: 8
    readonly property int cardRadius: 12

    /// Whether nothing is to move that need not. The window says so.
    property bool reducesMotion: false
    /// Milliseconds that something takes to become something else.
    readonly property int motion: reducesMotion ? 0 : 160

    /// How high a control is, so that its type fits in.
    readonly property int controlHeight: Math.round(32 * scale)
    readonly property int rowHeight: Math.round(30 * scale)
}
