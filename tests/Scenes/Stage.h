// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/Scenes/Dice.h"
#include "tests/Scenes/SceneCanvas.h"
#include "tests/Scenes/SceneWords.h"

#include <QColor>
#include <QRect>
#include <QString>

namespace mossbank::test {

/// The colours and fonts of one program.
struct Look {
    bool dark = false;
    QString family;
    QString code;
    QString serif;
    /// Of ordinary text, in pixels.
    int pixels = 13;
    QColor window;
    QColor panel;
    QColor line;
    QColor ink;
    QColor second;
    QColor faint;
    QColor accent;

    TextStyle text() const { return {family, pixels, ink}; }
    TextStyle bold() const { return text().heavy(); }
    TextStyle secondary() const { return {family, pixels - 1, second}; }
    /// Small and gray, as a line below another.
    TextStyle small() const { return {family, qMax(10, pixels - 3), faint}; }
    TextStyle heading(int larger) const { return text().sized(pixels + larger).heavy(); }
    /// The accent as letters have it, which are thin.
    QColor accentText() const { return dark ? accent.lighter(135) : accent.darker(108); }
};

/// White or nearly black: what can be read on `colour`.
QColor inkOn(const QColor& colour);

/// The desk that a layout is laid out on.
struct Stage {
    SceneCanvas& canvas;
    Dice& dice;
    SceneWords& words;
    /// Pixels of text of this desktop.
    int pixels = 13;

    QRect screen() const { return {{0, 0}, canvas.size()}; }

    Look look();
    Look look(bool dark);
    /// A colour that a badge, a button or a bubble may have.
    QColor vivid();

    /// Gradients, flat colours, something like a photograph. Paints the whole picture.
    void wallpaper();
    /// The desktop's bar with a few words. Returns what is left of the screen.
    QRect bar();
    /// A window with shadow, corners and perhaps a title. Returns the room inside; painting stays
    /// inside the window until leaveWindow().
    QRect window(const QRect& frame, const Look& look);
    void leaveWindow();

    /// `area` cut side by side into `count` windows with gaps, not quite alike.
    QList<QRect> sideBySide(const QRect& area, int count);

    /// A button as wide as its words. Returns its rectangle.
    QRect button(QPoint at, const QString& text, const TextStyle& style, const QColor& colour);
    /// Text in a pill as wide as its words. Returns its rectangle.
    QRect pill(QPoint at, const QString& text, const TextStyle& style, const QColor& colour);
    /// A field with a frame and perhaps what is typed in it.
    void field(const QRect& area, const QString& text, const TextStyle& style, const Look& look);

private:
    void photograph();
    void shadow(const QRect& frame, double radius);
    QRect titleBar(const QRect& frame, const Look& look);
};

} // namespace mossbank::test
