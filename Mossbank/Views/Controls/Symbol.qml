// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Shapes
import Mossbank.Views

/// A drawing in one line and one colour. What it stands for is said by whatever holds it.
Item {
    id: symbol

    property color color: Theme.ink
    property string name
    property int size: Math.round(16 * Theme.scale)

    Accessible.ignored: true
    implicitHeight: size
    implicitWidth: size

    Shape {
        height: 16
        scale: symbol.size / 16
        transformOrigin: Item.TopLeft
        width: 16

        ShapePath {
            capStyle: ShapePath.RoundCap
            fillColor: "transparent"
            joinStyle: ShapePath.RoundJoin
            strokeColor: symbol.color
            strokeWidth: 1.4

            PathSvg {
                path: Symbols.lines[symbol.name] ?? ""
            }
        }
        ShapePath {
            fillColor: symbol.color
            strokeColor: "transparent"
            strokeWidth: -1

            PathSvg {
                path: Symbols.fills[symbol.name] ?? ""
            }
        }
    }
}
