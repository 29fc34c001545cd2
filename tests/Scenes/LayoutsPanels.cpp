// SPDX-License-Identifier: Apache-2.0
#include "tests/Scenes/Layouts.h"

#include <QPolygon>

#include <algorithm>

namespace mossbank::test {

namespace {

using namespace Qt::StringLiterals;

/// Names on the left, what they are set to on the right.
void choices(Stage& stage, const QRect& room, const Look& look)
{
    const QColor value = stage.dice.chance(60) ? look.accentText() : look.second;
    const bool described = stage.dice.chance(75);
    const int height = stage.canvas.lineHeight(look.text()) +
                       (described ? stage.canvas.lineHeight(look.small()) : 0) +
                       (described ? stage.dice.between(12, 26) : stage.dice.between(20, 34));
    for (int top = room.top(); top + height < room.bottom(); top += height) {
        stage.canvas.text({room.left(), top}, room.width() - 190, stage.words.phrase(1, 4),
                          look.text());
        if (described)
            stage.canvas.text({room.left(), top + stage.canvas.lineHeight(look.text())},
                              room.width() - 190, stage.words.phrase(4, 8), look.small());
        if (stage.dice.chance(20)) {
            const bool on = stage.dice.chance(50);
            const QRect toggle(room.right() - 38, top + 2, 36, 19);
            stage.canvas.fillRounded(toggle, on ? look.accent : look.line, 10);
            stage.canvas.fillRounded(
                {on ? toggle.right() - 16 : toggle.left() + 2, toggle.top() + 2, 15, 15}, Qt::white,
                8);
        } else {
            stage.canvas.textUpTo(room.right(), top, 180,
                                  stage.words.word() + u' ' + stage.words.number(3),
                                  look.text().coloured(value));
        }
        stage.canvas.fill({room.left() - 8, top + height - 8, room.width() + 16, 1}, look.line);
    }
}

QString cell(Stage& stage, int kind)
{
    switch (kind) {
    case 0:
        return stage.words.word();
    case 1:
        return stage.words.number(6);
    case 2:
        return stage.words.amount();
    case 3:
        return stage.words.date();
    default:
        return stage.words.phrase(1, 2);
    }
}

/// A square with a folded corner or a folder's tab.
void icon(Stage& stage, const QRect& area, bool folder)
{
    const QColor colour = stage.vivid();
    if (folder) {
        stage.canvas.fillRounded({area.left(), area.top() + 4, area.width() / 2, 12},
                                 colour.darker(115), 3);
        stage.canvas.fillRounded(area.adjusted(0, 8, 0, 0), colour, 4);
        return;
    }
    stage.canvas.fillRounded(area.adjusted(5, 0, -5, 0), QColor(0xf2, 0xf2, 0xee), 3);
    stage.canvas.outline(area.adjusted(5, 0, -5, 0), QColor(0xb4, 0xb4, 0xb4), 3);
    stage.canvas.fillRounded(area.adjusted(12, area.height() / 2, -12, -8), colour, 2);
}

} // namespace

void paintSettings(Stage& stage)
{
    stage.wallpaper();
    const QRect desk = stage.bar();
    const int count = desk.width() < 1300 ? 1 : stage.dice.between(1, 2);
    for (const QRect& frame : stage.sideBySide(desk, count)) {
        const Look look = stage.look();
        QRect room = stage.window(frame, look);
        if (count == 1) {
            const QRect side(room.left(), room.top(), 220, room.height());
            stage.canvas.fill(side, look.panel);
            const int chosen = stage.dice.between(0, 8);
            for (int row = 0; row < 12; ++row) {
                const QRect area(side.left() + 8, side.top() + 14 + row * 36, side.width() - 16,
                                 32);
                if (row == chosen)
                    stage.canvas.fillRounded(area, look.accent, 6);
                stage.canvas.fillRounded({area.left() + 8, area.center().y() - 8, 17, 17},
                                         row == chosen ? inkOn(look.accent) : stage.vivid(), 4);
                stage.canvas.textIn(area.adjusted(36, 0, -6, 0), stage.words.phrase(1, 2),
                                    row == chosen ? look.text().coloured(inkOn(look.accent))
                                                  : look.text());
            }
            room.setLeft(side.right() + 1);
        }
        choices(stage, room.adjusted(30, 26, -30, -20), look);
        stage.leaveWindow();
    }
}

void paintSheet(Stage& stage)
{
    const Look look = stage.look(stage.dice.chance(20));
    const QRect screen = stage.screen();
    stage.canvas.fill(screen, look.panel);
    const QColor band = stage.vivid();
    const QRect title(0, 0, screen.width(), stage.canvas.lineHeight(look.text()) + 12);
    stage.canvas.fill(title, band);
    stage.canvas.textIn(title.adjusted(12, 0, -12, 0),
                        stage.words.phrase(3, 6) + u' ' + stage.words.number(5),
                        look.text().coloured(inkOn(band)));
    int left = 14;
    for (int entry = 0; entry < 6; ++entry)
        left = stage.canvas.text({left, title.bottom() + 7}, 120, stage.words.name(), look.text()) +
               20;
    const int top = title.bottom() + 14 + stage.canvas.lineHeight(look.text());
    const QRect formula(60, top, screen.width() - 80, title.height() - 4);
    stage.field(formula,
                u"=SUM("_s + stage.words.identifier() + u", "_s + stage.words.number(4) + u")"_s,
                look.text(), look);
    const TextStyle style = look.text().sized(std::max(11, look.pixels - stage.dice.between(0, 2)));
    const int height = stage.canvas.lineHeight(style) + stage.dice.between(3, 9);
    const int heads = stage.canvas.width(u"000"_s, style) + 16;
    const QRect grid(heads, formula.bottom() + 10 + height, screen.width() - heads,
                     screen.height() - formula.bottom() - 10 - height - 34);
    stage.canvas.fill(grid, look.window);
    const int rows = std::min(grid.height() / height, stage.dice.between(18, 60));
    int x = grid.left();
    for (int column = 0; x < grid.right() - 90 && column < 20; ++column) {
        const int wide = std::min(stage.dice.between(90, 170), grid.right() - x);
        const int kind = stage.dice.between(0, 4);
        stage.canvas.textAmid({x, grid.top() - height, wide, height}, QString(QChar(u'A' + column)),
                              style.coloured(look.second));
        for (int row = 0; row < rows; ++row) {
            const QRect area(x + 6, grid.top() + row * height, wide - 12, height);
            if (row == 0)
                stage.canvas.textIn(area, stage.words.name(), style.heavy());
            else if (kind == 0 || kind == 4)
                stage.canvas.textIn(area, cell(stage, kind), style);
            else if (!stage.dice.chance(8))
                stage.canvas.textUpTo(area.right(),
                                      area.top() + (height - stage.canvas.lineHeight(style)) / 2,
                                      area.width(), cell(stage, kind), style);
        }
        x += wide;
        stage.canvas.fill({x - 1, grid.top() - height, 1, rows * height + height}, look.line);
    }
    for (int row = 0; row < rows; ++row) {
        const QRect head(0, grid.top() + row * height, heads, height);
        stage.canvas.textAmid(head, QString::number(row + 1), style.coloured(look.second));
        stage.canvas.fill({0, head.bottom(), x, 1}, look.line);
    }
    left = 20;
    for (int sheet = 0; sheet < 3; ++sheet)
        left = stage.canvas.text({left, screen.height() - 27}, 140, stage.words.name(),
                                 look.secondary()) +
               26;
}

void paintDialog(Stage& stage)
{
    stage.wallpaper();
    const QRect desk = stage.bar();
    const Look look = stage.look();
    const int wide = stage.dice.between(480, 760);
    const int fields = stage.dice.between(3, 6);
    const int boxes = stage.dice.between(2, 5);
    const int row = stage.canvas.lineHeight(look.text()) + 14;
    const int high = 190 + fields * (row + 34) + boxes * (row + 2);
    const QRect frame(desk.left() + stage.dice.between(40, desk.width() - wide - 40),
                      desk.top() + stage.dice.between(10, std::max(11, desk.height() - high - 20)),
                      wide, std::min(high, desk.height() - 20));
    const QRect room = stage.window(frame, look).adjusted(28, 20, -28, -20);
    int top = room.top();
    stage.canvas.text({room.left(), top}, room.width(), stage.words.phrase(3, 5), look.heading(6));
    top += stage.canvas.lineHeight(look.heading(6)) + 6;
    top = stage.canvas.paragraph({room.left(), top, room.width(), 60}, stage.words.sentences(2),
                                 look.secondary(), 1.3) +
          14;
    const int last = room.bottom() - row;
    for (int count = 0; count < fields && top + 2 * row + 30 < last; ++count) {
        stage.canvas.text({room.left(), top}, room.width(), stage.words.phrase(1, 3), look.text());
        top += stage.canvas.lineHeight(look.text()) + 3;
        const bool empty = stage.dice.chance(50);
        stage.field({room.left(), top, room.width() - 2, row},
                    empty ? stage.words.phrase(2, 3) : stage.words.email(),
                    empty ? look.text().coloured(look.faint) : look.text(), look);
        top += row + 12;
    }
    const bool round = stage.dice.chance(40);
    for (int count = 0; count < boxes && top + 2 * row < last; ++count) {
        const QRect box(room.left(), top + (row - 15) / 2, 15, 15);
        const bool on = stage.dice.chance(50);
        if (on)
            stage.canvas.fillRounded(box, look.accent, round ? 8 : 3);
        stage.canvas.outline(box, look.second, round ? 8 : 3);
        stage.canvas.textIn({box.right() + 10, top, room.width() - 30, row},
                            stage.words.phrase(3, 7), look.text());
        top += row + 2;
    }
    int left = room.left();
    for (int count = stage.dice.between(2, 3); count > 0; --count)
        left = stage
                   .button({left, last - 6}, stage.words.phrase(1, 2), look.text(),
                           count == 1 ? look.accent : look.panel.darker(112))
                   .right() +
               12;
    stage.leaveWindow();
}

void paintFiles(Stage& stage)
{
    stage.wallpaper();
    const Look look = stage.look();
    const QRect frame =
        stage.bar().adjusted(stage.dice.between(10, 120), stage.dice.between(10, 50),
                             -stage.dice.between(10, 160), -stage.dice.between(20, 90));
    const QRect room = stage.window(frame, look);
    const QRect side(room.left(), room.top(), 190, room.height());
    stage.canvas.fill(side, look.panel);
    for (int top = side.top() + 16; top + 60 < side.bottom() && top < side.top() + 400; top += 32)
        stage.canvas.text({side.left() + 20, top}, side.width() - 30, stage.words.phrase(1, 2),
                          look.text());
    const QRect path(side.right() + 16, room.top() + 10, room.right() - side.right() - 40,
                     stage.canvas.lineHeight(look.text()) + 10);
    stage.field(path, u"/home/"_s + stage.words.identifier() + u'/' + stage.words.identifier(),
                look.text(), look);
    const QStringList endings = {u"pdf"_s, u"png"_s, u"odt"_s, u"txt"_s,
                                 u"zip"_s, u"mp3"_s, u"csv"_s};
    const TextStyle name = look.text().sized(std::max(11, look.pixels - stage.dice.between(0, 2)));
    const int step = stage.dice.between(138, 180);
    const int size = stage.dice.pick<int>({48, 56, 64});
    const int high = size + stage.canvas.lineHeight(name) + stage.dice.between(26, 44);
    for (int top = path.bottom() + 20; top + high < room.bottom() - 40; top += high) {
        for (int left = path.left(); left + step < room.right(); left += step) {
            const bool folder = stage.dice.chance(25);
            icon(stage, {left + (step - size) / 2, top, size, size}, folder);
            const QString text = folder ? stage.words.name() : stage.words.fileName(endings);
            const QRect label(left + 4, top + size + 6, step - 8,
                              stage.canvas.lineHeight(name) + 4);
            const int wide = stage.canvas.width(text, name);
            const bool chosen = stage.dice.chance(6) && wide + 12 < label.width();
            if (chosen)
                stage.canvas.fillRounded(
                    {label.center().x() - wide / 2 - 5, label.top(), wide + 10, label.height()},
                    look.accent, 4);
            stage.canvas.textAmid(label, text, chosen ? name.coloured(inkOn(look.accent)) : name);
        }
    }
    stage.canvas.text({path.left(), room.bottom() - 26}, path.width(),
                      stage.words.number(3) + u" items, "_s + stage.words.fileSize() + u" free"_s,
                      look.small());
    stage.leaveWindow();
}

void paintDashboard(Stage& stage)
{
    const Look look = stage.look();
    const QRect screen = stage.screen();
    stage.canvas.fill(screen, look.panel);
    stage.canvas.text({32, 22}, screen.width() / 2, stage.words.phrase(2, 4), look.heading(10));
    stage.button({screen.width() - 220, 24}, stage.words.phrase(1, 2), look.text(), look.accent);
    const int columns = screen.width() / 300;
    const int wide = (screen.width() - 64 - (columns - 1) * 20) / columns;
    const int high = stage.dice.between(196, 240);
    for (int top = 80; top + high < screen.height(); top += high + 20) {
        for (int column = 0; column < columns; ++column) {
            const QRect card(32 + column * (wide + 20), top, wide, high);
            stage.canvas.fillRounded(card, look.window, 10);
            stage.canvas.outline(card, look.line, 10);
            const QRect in = card.adjusted(18, 16, -18, -14);
            stage.canvas.text(in.topLeft(), in.width(), stage.words.phrase(2, 3), look.secondary());
            const TextStyle big = look.text().sized(stage.dice.between(24, 32)).heavy();
            const QString amount =
                stage.dice.chance(50) ? stage.words.amount() : stage.words.number(3) + u'%';
            const int number = in.top() + stage.canvas.lineHeight(look.secondary()) + 4;
            stage.canvas.text({in.left(), number}, in.width(), amount, big);
            const int below = number + 6 + stage.canvas.lineHeight(big);
            const QColor colour = stage.vivid();
            const QRect rail(in.left(), below, in.width(), 8);
            stage.canvas.fillRounded(rail, look.line, 4);
            stage.canvas.fillRounded(
                {rail.topLeft(), QSize(rail.width() * stage.dice.between(10, 95) / 100, 8)}, colour,
                4);
            stage.canvas.text({in.left(), below + 16}, in.width(), stage.words.phrase(3, 6),
                              look.small());
            int left = in.left();
            const TextStyle chip = look.text().sized(std::max(11, look.pixels - 2));
            for (int chips = stage.dice.between(1, 3); chips > 0; --chips) {
                const QString text = stage.words.word();
                if (left + stage.canvas.width(text, chip) + 20 > in.right())
                    break;
                left = stage
                           .pill({left, below + 24 + stage.canvas.lineHeight(look.small())}, text,
                                 chip, stage.vivid())
                           .right() +
                       8;
            }
        }
    }
}

} // namespace mossbank::test
