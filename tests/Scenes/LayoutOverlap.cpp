// SPDX-License-Identifier: Apache-2.0
#include "tests/Scenes/Layouts.h"

#include <algorithm>

namespace mossbank::test {

namespace {

/// Lines too long for their window, which cuts them.
void longLines(Stage& stage, const QRect& room, const Look& look)
{
    const int height = stage.canvas.lineHeight(look.text()) + stage.dice.between(2, 10);
    for (int top = room.top(); top + height < room.bottom(); top += height)
        stage.canvas.textCutBy(room, {room.left(), top}, stage.words.phrase(4, 24), look.text());
}

} // namespace

void paintOverlap(Stage& stage)
{
    stage.wallpaper();
    const QRect desk = stage.bar();
    const QSize size(desk.width() * stage.dice.between(52, 66) / 100,
                     desk.height() * stage.dice.between(60, 76) / 100);
    const Look below = stage.look();
    const QRect first(
        desk.topLeft() + QPoint(stage.dice.between(14, 60), stage.dice.between(12, 40)), size);
    const QRect room = stage.window(first, below).adjusted(20, 16, -20, -16);
    longLines(stage, room, below);
    stage.leaveWindow();
    const Look above = stage.look();
    const QRect second(desk.right() - size.width() - stage.dice.between(14, 60),
                       desk.bottom() - size.height() - stage.dice.between(14, 50), size.width(),
                       size.height());
    const QRect inner = stage.window(second, above).adjusted(22, 18, -22, -18);
    int top = inner.top();
    while (top + 70 < inner.bottom())
        top = stage.canvas.paragraph({inner.left(), top, inner.width(), inner.bottom() - top},
                                     stage.words.sentences(3), above.text(), 1.35) +
              above.pixels;
    stage.leaveWindow();
}

} // namespace mossbank::test
