// SPDX-License-Identifier: Apache-2.0
import QtQuick

// Components within this one are made where its ids are in reach; the linter cannot know it.
// qmllint disable unqualified

/// The sign of the program.
Rectangle {
    id: brand

    Accessible.ignored: true
    height: width
    radius: width * 0.28
    width: 22

    gradient: Gradient {
        GradientStop {
            color: "#5d9674"
            position: 0
        }
        GradientStop {
            color: "#2f5440"
            position: 1
        }
    }

    Column {
        anchors.centerIn: parent
        spacing: Math.max(1, brand.width * 0.07)

        Repeater {
            model: [1, 0.8, 0.55]

            Rectangle {
                required property real modelData

                color: "#ffffff"
                height: Math.max(2, brand.width * 0.13)
                opacity: modelData
                radius: height / 3
                width: brand.width * 0.55
            }
        }
    }
}
