// SPDX-License-Identifier: Apache-2.0
#include "tests/Scenes/Layouts.h"

#include <algorithm>

namespace mossbank::test {

namespace {

using namespace Qt::StringLiterals;

const QStringList kSources = {u"cpp"_s, u"h"_s, u"py"_s, u"rs"_s, u"ts"_s, u"md"_s, u"json"_s};

/// The look of an editor in the colours of its code.
Look around(Stage& stage, const CodeColours& colours)
{
    Look look = stage.look(colours.dark);
    look.window = colours.paper;
    look.panel = colours.dark ? colours.paper.lighter(125) : colours.paper.darker(104);
    if (colours.paper == Qt::black)
        look.panel = QColor(0x18, 0x18, 0x1a);
    return look;
}

void tree(Stage& stage, const QRect& area, const Look& look)
{
    stage.canvas.fill(area, look.panel);
    const TextStyle style = look.secondary();
    const int height = stage.canvas.lineHeight(style) + stage.dice.between(3, 9);
    stage.canvas.text({area.left() + 14, area.top() + 8}, area.width() - 20,
                      stage.words.phrase(1, 2).toUpper(), look.small());
    int inner = 0;
    for (int top = area.top() + 34; top + height + 20 < area.bottom(); top += height) {
        const QRect row(area.left(), top, area.width(), height);
        const bool chosen = stage.dice.chance(5);
        if (chosen)
            stage.canvas.fill(row, look.accent);
        const bool folder = stage.dice.chance(20);
        const QString text = folder ? stage.words.identifier() : stage.words.fileName(kSources);
        const int left = 16 + (folder ? 0 : inner) * 14;
        stage.canvas.textIn(row.adjusted(left, 0, -8, 0), text,
                            chosen ? style.coloured(inkOn(look.accent)) : style);
        if (folder)
            inner = stage.dice.between(1, 2);
    }
}

void tabs(Stage& stage, const QRect& area, const Look& look)
{
    stage.canvas.fill(area, look.panel);
    int left = area.left();
    for (int count = stage.dice.between(2, 5); count > 0; --count) {
        const QString text = stage.words.fileName(kSources);
        const QRect tab(left, area.top(), stage.canvas.width(text, look.text()) + 44,
                        area.height());
        if (tab.right() > area.right())
            return;
        if (count == 2) {
            stage.canvas.fill(tab, look.window);
            stage.canvas.fill({tab.left(), tab.top(), tab.width(), 2}, look.accent);
        }
        stage.canvas.textIn(tab.adjusted(14, 0, -20, 0), text,
                            count == 2 ? look.text() : look.secondary());
        left = tab.right() + 1;
    }
}

void statusBar(Stage& stage, const QRect& area, const Look& look)
{
    stage.canvas.fill(area, look.accent);
    const TextStyle style = look.secondary().coloured(inkOn(look.accent));
    const int end = stage.canvas.textIn(area.adjusted(12, 0, -area.width() / 2, 0),
                                        stage.words.phrase(2, 4), style);
    const QString right = u"Ln "_s + stage.words.number(3) + u", Col "_s + stage.words.number(2) +
                          u"  UTF-8  "_s + stage.words.name();
    stage.canvas.textUpTo(area.right() - 12,
                          area.top() + (area.height() - stage.canvas.lineHeight(style)) / 2,
                          area.right() - 40 - end, right, style);
}

} // namespace

void paintEditor(Stage& stage, const QRect& area, const CodeColours& colours,
                 const TextStyle& style)
{
    stage.canvas.fill(area, colours.paper);
    const int height = stage.canvas.lineHeight(style) + stage.dice.between(0, 6);
    const int gutter = stage.canvas.width(u"0000"_s, style) + 14;
    const int marked = stage.dice.between(4, 20);
    int line = stage.dice.between(1, 900);
    int row = 0;
    for (int top = area.top() + 6; top + height < area.bottom(); top += height, ++line, ++row) {
        if (row == marked)
            stage.canvas.fill({area.left(), top, area.width(), height},
                              colours.dark ? colours.paper.lighter(135)
                                           : colours.paper.darker(105));
        stage.canvas.textUpTo(area.left() + gutter - 8, top, gutter, QString::number(line),
                              style.coloured(colours.gray));
        stage.canvas.spans({area.left() + gutter + 8, top}, area.width() - gutter - 20,
                           codeLine(stage.dice, stage.words, colours), style);
    }
}

void paintShell(Stage& stage, const QRect& area, const CodeColours& colours, const TextStyle& style)
{
    stage.canvas.fill(area, colours.paper);
    const int height = stage.canvas.lineHeight(style) + stage.dice.between(0, 2);
    const int end = area.bottom() - area.height() * stage.dice.between(0, 30) / 100;
    for (int top = area.top() + 8; top + height < end; top += height)
        stage.canvas.spans({area.left() + 10, top}, area.width() - 20,
                           shellLine(stage.dice, stage.words, colours), style);
}

void paintCode(Stage& stage)
{
    const CodeColours colours = codeColours(stage.dice, stage.dice.chance(65));
    const Look look = around(stage, colours);
    QRect area = stage.screen();
    const bool framed = stage.dice.chance(50);
    if (framed) {
        stage.wallpaper();
        area = stage.window(stage.bar().adjusted(30, 20, -70, -50), look);
    } else {
        stage.canvas.fill(area, look.window);
    }
    const int high = stage.canvas.lineHeight(look.text()) + 14;
    const QRect side(area.left(), area.top(), stage.dice.between(190, 270), area.height() - high);
    tree(stage, side, look);
    const QRect right = area.adjusted(side.width(), 0, 0, 0);
    tabs(stage, {right.left(), right.top(), right.width(), high}, look);
    const QRect below(area.left(), area.bottom() - high + 5, area.width(), high - 4);
    const TextStyle style{look.code, look.pixels + stage.dice.between(-1, 1), colours.ink};
    paintEditor(stage,
                {right.left(), right.top() + high, right.width(), below.top() - right.top() - high},
                colours, style);
    statusBar(stage, below, look);
    if (framed)
        stage.leaveWindow();
}

void paintWorkbench(Stage& stage)
{
    const CodeColours colours = codeColours(stage.dice, stage.dice.chance(60));
    const Look look = around(stage, colours);
    const QRect screen = stage.screen();
    stage.canvas.fill(screen, look.window);
    const int high = stage.canvas.lineHeight(look.text()) + 12;
    const QRect menu(0, 0, screen.width(), high);
    stage.canvas.fill(menu, look.panel);
    int left = 14;
    for (const QString& entry :
         {u"File"_s, u"Edit"_s, u"View"_s, u"Search"_s, u"Tools"_s, u"Help"_s})
        left = stage.canvas.textIn({left, 0, 120, high}, entry, look.text()) + 18;
    stage.canvas.textAmid(menu.adjusted(left + 20, 0, -200, 0), stage.words.phrase(2, 4),
                          look.secondary());
    const QRect body(0, high, screen.width(), screen.height() - 2 * high);
    const QRect side(0, body.top(), stage.dice.between(180, 250), body.height());
    tree(stage, side, look);
    const QRect outline(screen.width() - stage.dice.between(180, 240), body.top(), 0,
                        body.height());
    const QRect right(outline.left(), body.top(), screen.width() - outline.left(), body.height());
    tree(stage, right, look);
    const int shell = body.height() * stage.dice.between(22, 34) / 100;
    const QRect middle(side.right() + 1, body.top(), right.left() - side.right() - 1,
                       body.height() - shell);
    tabs(stage, {middle.left(), middle.top(), middle.width(), high}, look);
    const TextStyle style{look.code, look.pixels + stage.dice.between(-2, 0), colours.ink};
    const QRect code = middle.adjusted(0, high, 0, 0);
    if (stage.dice.chance(40) && screen.width() > 1300) {
        paintEditor(stage, code.adjusted(0, 0, -code.width() / 2, 0), colours, style);
        const QRect second = code.adjusted(code.width() / 2, 0, 0, 0);
        paintEditor(stage, second, colours, style);
        stage.canvas.fill({second.left(), second.top(), 1, second.height()}, look.line);
    } else {
        paintEditor(stage, code, colours, style);
    }
    const QRect below(middle.left(), middle.bottom() + 1, middle.width(), shell);
    tabs(stage, {below.left(), below.top(), below.width(), high}, look);
    paintShell(stage, below.adjusted(0, high, 0, 0), colours, style);
    statusBar(stage, {0, screen.height() - high, screen.width(), high}, look);
}

void paintTerminals(Stage& stage)
{
    stage.wallpaper();
    const QRect desk = stage.bar();
    const int columns = stage.dice.between(1, 2);
    const int rows = columns == 1 ? 1 : stage.dice.between(1, 2);
    for (const QRect& column : stage.sideBySide(desk, columns)) {
        for (int row = 0; row < rows; ++row) {
            const QRect frame(column.left(), column.top() + row * column.height() / rows,
                              column.width(), column.height() / rows - (rows > 1 ? 18 : 0));
            const CodeColours colours = codeColours(stage.dice, stage.dice.chance(65));
            const Look look = around(stage, colours);
            const TextStyle style{look.code, std::max(11, look.pixels - stage.dice.between(0, 3)),
                                  colours.ink};
            paintShell(stage, stage.window(frame, look), colours, style);
            stage.leaveWindow();
        }
    }
}

} // namespace mossbank::test
