// SPDX-License-Identifier: Apache-2.0
#include "tests/Scenes/Layouts.h"

#include <algorithm>

namespace mossbank::test {

namespace {

using namespace Qt::StringLiterals;

void bubbles(Stage& stage, const QRect& room, const Look& look)
{
    const TextStyle style = look.text();
    const QColor mine = stage.vivid();
    const QColor theirs = look.dark ? look.line : QColor(0xe8, 0xe9, 0xec);
    int top = room.top();
    while (true) {
        const bool right = stage.dice.chance(45);
        const QColor colour = right ? mine : theirs;
        const int most = room.width() * stage.dice.between(55, 74) / 100;
        const QString text = stage.words.sentences(stage.dice.between(1, 3));
        const int wide = std::min(most, stage.canvas.width(text, style) + 2);
        int lines = 0;
        for (QString rest = text; !rest.isEmpty(); ++lines)
            rest = rest.mid(stage.canvas.fitting(rest, style, wide).size()).trimmed();
        const int step = stage.canvas.lineHeight(style);
        const QRect bubble(right ? room.right() - wide - 28 : room.left(), top, wide + 28,
                           lines * step + 16);
        if (bubble.bottom() > room.bottom())
            return;
        stage.canvas.fillRounded(bubble, colour, 14);
        stage.canvas.paragraph(bubble.adjusted(14, 8, -13, 0), text, style.coloured(inkOn(colour)),
                               1.0);
        top = bubble.bottom() + 6;
        if (stage.dice.chance(35)) {
            const QString time = stage.words.time();
            if (right)
                stage.canvas.textUpTo(room.right() - 8, top, 80, time, look.small());
            else
                stage.canvas.text({room.left() + 8, top}, 80, time, look.small());
            top += stage.canvas.lineHeight(look.small());
        }
        top += stage.dice.between(4, 12);
    }
}

void thread(Stage& stage, const QRect& room, const Look& look)
{
    const QList<QColor> names =
        look.dark
            ? QList<QColor>{{0x6c, 0xd0, 0xf5},
                            {0xf5, 0xa8, 0x4a},
                            {0x9a, 0xdc, 0x7c},
                            {0xf0, 0x8f, 0xb4}}
            : QList<QColor>{
                  {0x0b, 0x6a, 0xa8}, {0xa8, 0x52, 0x08}, {0x2f, 0x7d, 0x22}, {0xa8, 0x24, 0x62}};
    int top = room.top();
    const bool faces = stage.dice.chance(50);
    const int left = room.left() + (faces ? 46 : 0);
    while (top + 90 < room.bottom()) {
        if (faces)
            stage.canvas.fillRounded({room.left(), top + 2, 34, 34}, stage.vivid(), 17);
        const TextStyle who = look.bold().coloured(stage.dice.pick(names));
        const int end = stage.canvas.text({left, top}, room.width() / 2, stage.words.name(), who);
        stage.canvas.text({end + 6, top + 3}, 90, stage.words.time(), look.small());
        const int below = top + stage.canvas.lineHeight(who) + 1;
        top = stage.canvas.paragraph({left, below, room.right() - left, room.bottom() - below},
                                     stage.words.sentences(stage.dice.between(1, 3)), look.text(),
                                     1.2) +
              stage.dice.between(8, 16);
    }
}

void folders(Stage& stage, const QRect& room, const Look& look)
{
    const int height = stage.canvas.lineHeight(look.text()) + stage.dice.between(8, 16);
    const int chosen = stage.dice.between(0, 5);
    const TextStyle small = look.text().sized(std::max(10, look.pixels - 2));
    int row = 0;
    for (int top = room.top(); top + height < room.bottom() - 20 && row < 18;
         top += height, ++row) {
        const QRect area(room.left(), top, room.width(), height);
        TextStyle style = look.text();
        if (row == chosen) {
            stage.canvas.fillRounded(area.adjusted(6, 1, -6, -1), look.accent, 5);
            style = style.coloured(inkOn(look.accent));
        }
        const int end =
            stage.canvas.textIn(area.adjusted(18, 0, -70, 0), stage.words.phrase(1, 2), style);
        if (row != chosen && stage.dice.chance(60)) {
            const QString count = stage.words.number(4);
            const int wide = stage.canvas.width(count, small) + 14;
            const bool beside = stage.dice.chance(50);
            stage.pill({beside ? end + 6 : area.right() - wide - 12,
                        area.center().y() - stage.canvas.lineHeight(small) / 2 - 1},
                       count, small, stage.vivid());
        }
    }
}

void letters(Stage& stage, const QRect& room, const Look& look)
{
    const int height = stage.canvas.lineHeight(look.bold()) +
                       stage.canvas.lineHeight(look.small()) + stage.dice.between(12, 22);
    for (int top = room.top(); top + height < room.bottom(); top += height) {
        const QRect row(room.left(), top, room.width(), height);
        const bool chosen = stage.dice.chance(12);
        TextStyle first = stage.dice.chance(60) ? look.bold() : look.text();
        TextStyle second = look.small();
        if (chosen) {
            stage.canvas.fill(row, look.accent);
            const QColor ink = inkOn(look.accent);
            first = first.coloured(ink);
            second = second.coloured(ink.lightness() > 128 ? QColor(0xe4, 0xe8, 0xee) : ink);
        }
        const QPoint at(row.left() + 12, row.top() + 7);
        stage.canvas.text(at, row.width() - 90, stage.words.phrase(1, 3), first);
        stage.canvas.textUpTo(row.right() - 10, at.y() + 2, 60, stage.words.time(), second);
        stage.canvas.text({at.x(), at.y() + stage.canvas.lineHeight(first) + 1}, row.width() - 30,
                          stage.words.phrase(4, 8), second);
        stage.canvas.fill({row.left(), row.bottom(), row.width(), 1}, look.line);
    }
}

void letter(Stage& stage, const QRect& room, const Look& look)
{
    int top = room.top();
    const TextStyle title = look.heading(stage.dice.between(5, 10));
    stage.canvas.text({room.left(), top}, room.width(), stage.words.phrase(3, 6), title);
    top += stage.canvas.lineHeight(title) + 8;
    stage.canvas.text({room.left(), top}, room.width() - 180,
                      stage.words.phrase(2, 2) + u" <"_s + stage.words.email() + u'>',
                      look.secondary());
    stage.canvas.textUpTo(room.right(), top, 160, stage.words.date(), look.small());
    top += stage.canvas.lineHeight(look.text()) + 18;
    for (int count = stage.dice.between(3, 6); count > 0 && top + 90 < room.bottom(); --count)
        top = stage.canvas.paragraph({room.left(), top, room.width(), room.bottom() - 60 - top},
                                     stage.words.sentences(3), look.text(), 1.3) +
              look.pixels;
    int left = room.left();
    const QRect last(room.left(), std::min(top, room.bottom() - 40), room.width(), 40);
    for (int count = stage.dice.between(1, 3); count > 0; --count)
        left = stage
                   .button({left, last.top()}, stage.words.phrase(1, 2), look.text(),
                           count == 1 ? look.panel.darker(110) : stage.vivid())
                   .right() +
               10;
}

} // namespace

void paintChat(Stage& stage)
{
    stage.wallpaper();
    QList<QRect> frames = stage.sideBySide(stage.bar(), 2);
    if (stage.dice.chance(50))
        std::swap(frames[0], frames[1]);
    const Look light = stage.look(stage.dice.chance(15));
    bubbles(stage, stage.window(frames[0], light).adjusted(22, 18, -22, -18), light);
    stage.leaveWindow();
    const Look dark = stage.look(!light.dark || stage.dice.chance(30));
    thread(stage, stage.window(frames[1], dark).adjusted(24, 18, -24, -18), dark);
    stage.leaveWindow();
}

void paintMail(Stage& stage)
{
    stage.wallpaper();
    const QRect desk = stage.bar();
    const QRect frame = desk.adjusted(stage.dice.between(0, 40), stage.dice.between(4, 30),
                                      -stage.dice.between(0, 120), -stage.dice.between(10, 90));
    const Look look = stage.look();
    const QRect room = stage.window(frame, look);
    const QRect side(room.left(), room.top(), room.width() * stage.dice.between(16, 20) / 100,
                     room.height());
    Look sideLook = look;
    if (!look.dark && stage.dice.chance(50))
        sideLook = stage.look(true);
    stage.canvas.fill(side, sideLook.panel);
    folders(stage, side.adjusted(0, 14, 0, 0), sideLook);
    const QRect list(side.right() + 1, room.top(), room.width() * stage.dice.between(24, 30) / 100,
                     room.height());
    stage.canvas.fill(list, look.dark ? look.window : look.panel.lighter(102));
    letters(stage, list, look);
    stage.canvas.fill({list.right(), list.top(), 1, list.height()}, look.line);
    letter(stage, room.adjusted(list.right() - room.left() + 26, 26, -26, -20), look);
    stage.leaveWindow();
}

} // namespace mossbank::test
