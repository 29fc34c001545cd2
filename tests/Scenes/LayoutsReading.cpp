// SPDX-License-Identifier: Apache-2.0
#include "tests/Scenes/Layouts.h"

#include <QLinearGradient>

#include <algorithm>

namespace mossbank::test {

namespace {

using namespace Qt::StringLiterals;

/// Paragraphs below each other to the end of `area`, with a heading here and there.
void paragraphs(Stage& stage, const QRect& area, const TextStyle& style, const TextStyle& heading)
{
    const double spacing = stage.dice.between(125, 170) / 100.0;
    int top = area.top();
    while (top + 4 * style.pixels < area.bottom()) {
        if (stage.dice.chance(15)) {
            stage.canvas.text({area.left(), top}, area.width(), stage.words.phrase(2, 5), heading);
            top += stage.canvas.lineHeight(heading) + 8;
        }
        const QRect rest(area.left(), top, area.width(), area.bottom() - top);
        top = stage.canvas.paragraph(rest, stage.words.sentences(stage.dice.between(2, 4)), style,
                                     spacing) +
              style.pixels;
    }
}

/// Short notes with a coloured bar and a coloured link.
void asides(Stage& stage, const QRect& area, const Look& look)
{
    const TextStyle small = look.small().sized(std::max(11, look.pixels - 2));
    const QColor bar = stage.vivid();
    const QColor link = look.dark ? QColor(0x6c, 0xb2, 0xf5) : QColor(0x0b, 0x5c, 0xc0);
    int top = area.top();
    for (int notes = stage.dice.between(6, 14); notes > 0 && top + 80 < area.bottom(); --notes) {
        const int below = stage.canvas.paragraph({area.left() + 14, top, area.width() - 14, 44},
                                                 stage.words.sentence(7, 12), small, 1.35);
        stage.canvas.text({area.left() + 14, below}, area.width() - 14, stage.words.phrase(1, 3),
                          small.coloured(link));
        const int end = below + stage.canvas.lineHeight(small);
        stage.canvas.fill({area.left(), top, 3, end - top}, bar);
        top = end + 14;
    }
}

/// A row of page names in `bar`.
void pageNames(Stage& stage, const QRect& bar, const TextStyle& style)
{
    int x = bar.left();
    for (int pages = stage.dice.between(3, 6); pages > 0; --pages)
        x = stage.canvas.textIn({x, bar.top(), bar.right() - x, bar.height()}, stage.words.name(),
                                style) +
            24;
}

void page(Stage& stage, const QRect& area, const Look& look)
{
    const QColor link = look.dark ? QColor(0x7d, 0xb8, 0xff) : QColor(0x0d, 0x55, 0xc9);
    stage.canvas.fill(area, look.window);
    const QRect head(area.left(), area.top(), area.width(), 46);
    const QColor band = stage.dice.chance(40) ? stage.vivid() : look.panel;
    stage.canvas.fill(head, band);
    pageNames(stage, head.adjusted(30, 0, -30, 0), look.text().coloured(inkOn(band)));
    const int left = area.left() + area.width() * stage.dice.between(4, 10) / 100;
    const int wide = area.width() * stage.dice.between(50, 62) / 100;
    int top = head.bottom() + 30;
    const TextStyle title = look.text().sized(stage.dice.between(22, 32)).heavy();
    stage.canvas.text({left, top}, wide, stage.words.phrase(3, 6), title);
    top += stage.canvas.lineHeight(title) + 4;
    stage.canvas.text({left, top}, wide, stage.words.phrase(2, 3) + u" · "_s + stage.words.date(),
                      look.small());
    top += 32;
    const QRect column(left, top, wide, area.bottom() - top - 50);
    const TextStyle style =
        stage.dice.chance(30) ? TextStyle{look.serif, look.pixels + 2, look.ink} : look.text();
    paragraphs(stage, column, style, look.heading(4));
    const int aside = left + wide + 50;
    top = head.bottom() + 40;
    stage.canvas.text({aside, top}, area.right() - 20 - aside, stage.words.phrase(2, 3),
                      look.heading(2));
    top += 34;
    for (int links = stage.dice.between(6, 16); links > 0 && top + 60 < area.bottom(); --links) {
        const int end = stage.canvas.text({aside, top}, area.right() - 20 - aside,
                                          stage.words.phrase(2, 4), look.text().coloured(link));
        const int under = top + stage.canvas.lineHeight(look.text());
        if (stage.dice.chance(50))
            stage.canvas.fill({aside, under + 1, end - aside, 1}, link);
        top = under + 12;
    }
    stage.canvas.text({left, area.bottom() - 30}, area.width() / 2,
                      u"© 2024 "_s + stage.words.phrase(3, 6), look.small());
}

} // namespace

void paintArticle(Stage& stage)
{
    const Look look = stage.look(stage.dice.chance(25));
    const QRect screen = stage.screen();
    stage.canvas.fill(screen, look.window);
    const int band = stage.dice.between(110, 240);
    const QColor from =
        QColor::fromHsv(stage.dice.between(0, 359), 120, stage.dice.between(30, 60));
    QLinearGradient gradient(screen.topLeft(), screen.topRight());
    gradient.setColorAt(0, from);
    gradient.setColorAt(1, from.lighter(stage.dice.between(130, 210)));
    stage.canvas.painter().fillRect(QRect(0, 0, screen.width(), band), gradient);
    const int margin = screen.width() * stage.dice.between(4, 9) / 100;
    const TextStyle title = look.text().sized(stage.dice.between(24, 32)).coloured(Qt::white);
    stage.canvas.text({margin, band / 4}, screen.width() - 2 * margin, stage.words.phrase(3, 6),
                      title);
    stage.canvas.text({margin, band / 4 + stage.canvas.lineHeight(title) + 6}, screen.width() / 2,
                      stage.words.phrase(5, 9) + u' ' + stage.words.number(5),
                      look.text().coloured(QColor(0xdc, 0xe3, 0xe8)));
    const int columns = stage.dice.between(1, 2);
    const int wide = screen.width() * 62 / 100 - margin;
    const TextStyle style =
        stage.dice.chance(60)
            ? TextStyle{look.serif, look.pixels + stage.dice.between(1, 4), look.ink}
            : look.text();
    for (int column = 0; column < columns; ++column) {
        const int each = (wide - 36 * (columns - 1)) / columns;
        const QRect area(margin + column * (each + 36), band + 40, each,
                         screen.height() - band - 80);
        paragraphs(stage, area, style, look.heading(5));
    }
    asides(stage,
           {margin + wide + 60, band + 40, screen.width() - 2 * margin - wide - 60,
            screen.height() - band - 80},
           look);
}

void paintBrowser(Stage& stage)
{
    stage.wallpaper();
    const QRect desk = stage.bar();
    const Look look = stage.look();
    const Look paper = stage.look(look.dark && stage.dice.chance(50));
    const QRect frame = stage.dice.chance(50) ? desk : desk.adjusted(40, 20, -60, -40);
    stage.canvas.fill(frame, look.panel);
    const int height = stage.canvas.lineHeight(look.text()) + 16;
    const int open = stage.dice.between(2, 6);
    const int shown = stage.dice.between(0, open - 1);
    for (int tab = 0; tab < open; ++tab) {
        const QRect area(frame.left() + 8 + tab * 210, frame.top() + 6, 204, height);
        if (area.right() > frame.right())
            break;
        if (tab == shown)
            stage.canvas.fillRounded(area.adjusted(0, 0, 0, 6), look.window, 8);
        stage.canvas.fillRounded({area.left() + 10, area.center().y() - 7, 14, 14}, stage.vivid(),
                                 4);
        stage.canvas.textIn(area.adjusted(32, 0, -30, 0), stage.words.phrase(2, 4),
                            tab == shown ? look.text() : look.secondary());
    }
    const QRect tools(frame.left(), frame.top() + 6 + height, frame.width(), height + 12);
    stage.canvas.fill(tools, look.window);
    for (int arrow = 0; arrow < 3; ++arrow)
        stage.canvas.outline({tools.left() + 16 + arrow * 34, tools.center().y() - 7, 15, 15},
                             look.second, 7);
    const QRect bar = tools.adjusted(130, 6, -160, -6);
    stage.canvas.fillRounded(bar, look.panel, bar.height() / 2.0);
    stage.canvas.textIn(bar.adjusted(20, 0, -20, 0), stage.words.address(), look.text());
    page(stage, {frame.left(), tools.bottom() + 1, frame.width(), frame.bottom() - tools.bottom()},
         paper);
}

void paintLetters(Stage& stage)
{
    stage.wallpaper();
    const QList<QRect> frames = stage.sideBySide(stage.bar(), 2);
    for (int place = 0; place < 2; ++place) {
        const Look look = stage.look(place == 1);
        const QRect room = stage.window(frames[place], look).adjusted(26, 18, -26, -60);
        if (place == 0) {
            paragraphs(stage, room, look.text(), look.heading(4));
        } else {
            int top = room.top();
            while (top + 60 < room.bottom()) {
                stage.canvas.text({room.left(), top}, room.width() - 160,
                                  stage.words.sentence(3, 8), look.text());
                stage.canvas.textUpTo(room.right(), top, 140, stage.words.date(), look.small());
                top += stage.dice.between(28, 46);
            }
        }
        const QPoint below(room.left(), room.bottom() + 6);
        const QRect first = stage.button(below, stage.words.phrase(1, 2), look.text(), look.accent);
        stage.button({first.right() + 14, below.y()}, stage.words.phrase(1, 2), look.text(),
                     look.panel.darker(108));
        stage.leaveWindow();
    }
}

} // namespace mossbank::test
