// SPDX-License-Identifier: Apache-2.0
pragma Singleton

import QtQuick

/// The drawings of all symbols, each a line on a field of 16 by 16, as SVG writes paths.
QtObject {
    readonly property var lines: ({
            "calendar": "M2.5 4h11v9.5h-11z M2.5 7h11 M5.5 2.3v3 M10.5 2.3v3",
            "check": "M3.2 8.4l3.2 3.2L12.8 5",
            "chevron-left": "M9.8 3.5L5.3 8l4.5 4.5",
            "chevron-right": "M6.2 3.5L10.7 8l-4.5 4.5",
            "clock": "M14 8a6 6 0 1 1-12 0a6 6 0 1 1 12 0z M8 4.6V8l2.3 1.5",
            "contrast": "M14 8a6 6 0 1 1-12 0a6 6 0 1 1 12 0z",
            "copy": "M5.5 5.5h8v8h-8z M10.5 5.2v-2.7h-8v8h2.7",
            "cross": "M4 4l8 8 M12 4l-8 8",
            "drive": "M2 5h12v6h-12z M4.4 8.6h.2 M6.8 8.6h.2",
            "expand": "M9.6 2.5h3.9v3.9 M13.3 2.7L9.4 6.6 M6.4 13.5h-3.9v-3.9 M2.7 13.3l3.9-3.9",
            "fit": "M2.5 6v-3.5h3.5 M10 2.5h3.5v3.5 M13.5 10v3.5h-3.5 M6 13.5h-3.5v-3.5",
            "folder": "M2 13v-9.5h4.6l1.6 2h5.8v7.5z",
            "globe": "M14 8a6 6 0 1 1-12 0a6 6 0 1 1 12 0z M2.2 8h11.6 M8 2c3.1 3.4 3.1 8.6 0 12 M8 2c-3.1 3.4-3.1 8.6 0 12",
            "grid": "M2.6 2.6h4.1v4.1h-4.1z M9.3 2.6h4.1v4.1h-4.1z M2.6 9.3h4.1v4.1h-4.1z M9.3 9.3h4.1v4.1h-4.1z",
            "list": "M2.5 4h11 M2.5 8h11 M2.5 12h7",
            "menu": "M2.5 4.5h11 M2.5 8h11 M2.5 11.5h11",
            "minus": "M3.2 8h9.6",
            "pause": "M5.7 3.6v8.8 M10.3 3.6v8.8",
            "photo": "M2.2 3.2h11.6v9.6h-11.6z M2.4 10.8l3.2-3.2 3 3 1.8-1.8 3.2 3.2 M10.4 6.1h.2",
            "play": "M5.2 3.4l7.2 4.6-7.2 4.6z",
            "plus": "M8 3.2v9.6 M3.2 8h9.6",
            "record": "M13.6 8a5.6 5.6 0 1 1-11.2 0a5.6 5.6 0 1 1 11.2 0z",
            "search": "M11.4 6.9a4.5 4.5 0 1 1-9 0a4.5 4.5 0 1 1 9 0z M10.2 10.1l3.6 3.6",
            "sparkle": "M8 2l1.5 4.5 4.5 1.5-4.5 1.5-1.5 4.5-1.5-4.5-4.5-1.5 4.5-1.5z",
            "sun": "M10.7 8a2.7 2.7 0 1 1-5.4 0a2.7 2.7 0 1 1 5.4 0z M8 1.4v1.5 M8 13.1v1.5 M1.4 8h1.5 M13.1 8h1.5 M3.3 3.3l1.1 1.1 M11.6 11.6l1.1 1.1 M3.3 12.7l1.1-1.1 M11.6 4.4l1.1-1.1",
            "text": "M2.5 5.3v-2.8h2.8 M10.7 2.5h2.8v2.8 M13.5 10.7v2.8h-2.8 M5.3 13.5h-2.8v-2.8 M5 6.4h6 M5 9.6h4",
            "trash": "M2.8 4.5h10.4 M6 4.3v-1.8h4v1.8 M4.2 4.7l.5 8.8h6.6l.5-8.8 M6.8 7.2v3.9 M9.2 7.2v3.9",
            "warning": "M8 2.4l6 10.8h-12z M8 6.6v3 M8 11.3v.2"
        })
    /// What of a symbol is filled.
    readonly property var fills: ({
            "contrast": "M8 2a6 6 0 0 1 0 12z",
            "record": "M10.6 8a2.6 2.6 0 1 1-5.2 0a2.6 2.6 0 1 1 5.2 0z"
        })
}
