// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Mossbank.Views

/// Breathes while recording is on, and stands still where the user has asked for less motion.
Rectangle {
    id: dot

    objectName: "dot"

    /// Of `RecordingSwitch`.
    required property int recordingState
    readonly property bool isBreathing: recordingState === RecordingSwitch.Recording && !Theme.reducesMotion

    Accessible.ignored: true
    color: recordingState === RecordingSwitch.Recording ? Theme.live
           : recordingState === RecordingSwitch.Paused ? Theme.waiting : Theme.secondaryInk
    height: 7
    radius: 3.5
    width: 7

    SequentialAnimation on opacity {
        alwaysRunToEnd: false
        loops: Animation.Infinite
        running: dot.isBreathing

        onStopped: dot.opacity = 1

        NumberAnimation {
            duration: 1300
            easing.type: Easing.InOutQuad
            from: 1
            to: 0.45
        }
        NumberAnimation {
            duration: 1300
            easing.type: Easing.InOutQuad
            from: 0.45
            to: 1
        }
    }
}
