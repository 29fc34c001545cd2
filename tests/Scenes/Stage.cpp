// SPDX-License-Identifier: Apache-2.0
#include "tests/Scenes/Stage.h"

#include "tests/Scenes/SceneFonts.h"

#include <QLinearGradient>
#include <QPainterPath>

#include <algorithm>

namespace mossbank::test {

namespace {

constexpr double kCorner = 9;

QColor mixed(const QColor& one, const QColor& other, double share)
{
    return QColor::fromRgbF(
        static_cast<float>(one.redF() + (other.redF() - one.redF()) * share),
        static_cast<float>(one.greenF() + (other.greenF() - one.greenF()) * share),
        static_cast<float>(one.blueF() + (other.blueF() - one.blueF()) * share));
}

/// A raster of colours by chance around `base`.
QImage patches(QSize size, const QColor& base, int spread, Dice& dice)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const int by = dice.between(-spread, spread);
            image.setPixel(
                x, y,
                qRgb(std::clamp(base.red() + by + dice.between(-spread / 3, spread / 3), 0, 255),
                     std::clamp(base.green() + by, 0, 255),
                     std::clamp(base.blue() + by + dice.between(-spread / 3, spread / 3), 0, 255)));
        }
    }
    return image;
}

} // namespace

QColor inkOn(const QColor& colour)
{
    const double light = 0.3 * colour.redF() + 0.59 * colour.greenF() + 0.11 * colour.blueF();
    return light > 0.62 ? QColor(0x1b, 0x1b, 0x1f) : QColor(Qt::white);
}

Look Stage::look()
{
    return look(dice.chance(45));
}

Look Stage::look(bool dark)
{
    Look look;
    look.dark = dark;
    look.family = dice.pick(plainFamilies());
    look.serif = dice.pick(serifFamilies());
    look.code = dice.pick(codeFamilies());
    look.pixels = pixels;
    look.accent = vivid();
    const int hue = dice.between(0, 359);
    const int tint = dice.between(0, 40);
    if (dark) {
        const int depth = dice.between(16, 46);
        look.window = QColor::fromHsv(hue, tint, depth);
        look.panel = QColor::fromHsv(hue, tint, depth + dice.between(5, 18));
        look.line = QColor::fromHsv(hue, tint / 2, depth + 34);
        look.ink = QColor::fromHsv(hue, 8, dice.between(215, 255));
        look.second = mixed(look.ink, look.window, 0.25);
        look.faint = mixed(look.ink, look.window, dice.between(38, 48) / 100.0);
    } else {
        const int light = dice.between(247, 255);
        look.window = QColor::fromHsv(hue, dice.between(0, 7), light);
        look.panel = QColor::fromHsv(hue, dice.between(0, 14), light - dice.between(6, 22));
        look.line = QColor::fromHsv(hue, 8, 222);
        look.ink = QColor::fromHsv(hue, tint, dice.between(10, 55));
        look.second = mixed(look.ink, look.window, 0.25);
        look.faint = mixed(look.ink, look.window, dice.between(38, 50) / 100.0);
    }
    return look;
}

QColor Stage::vivid()
{
    return dice.pick<QColor>({QColor(0x1f, 0x6f, 0xe5), QColor(0xd9, 0x3a, 0x3a),
                              QColor(0x1e, 0x96, 0x4f), QColor(0x7a, 0x4f, 0xd0),
                              QColor(0xe0, 0x7b, 0x16), QColor(0x0f, 0x8f, 0x93),
                              QColor(0xc2, 0x2f, 0x7d), QColor(0x3b, 0x4c, 0xa8),
                              QColor(0x5c, 0x67, 0x73), QColor(0x2c, 0xb6, 0x6b)});
}

void Stage::photograph()
{
    const QSize size = canvas.size();
    const QColor base =
        QColor::fromHsv(dice.between(0, 359), dice.between(60, 150), dice.between(70, 180));
    const auto large = [&](const QImage& image) {
        return image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    };
    QPainter& painter = canvas.painter();
    painter.drawImage(0, 0, large(patches({6, 4}, base, 70, dice)));
    painter.setOpacity(0.4);
    painter.drawImage(0, 0, large(patches({60, 36}, base, 80, dice)));
    painter.setOpacity(0.25);
    painter.drawImage(0, 0, large(patches(size / 4, base, 80, dice)));
    painter.setOpacity(0.12);
    painter.drawImage(0, 0, patches(size, base, 90, dice));
    painter.setOpacity(1);
}

void Stage::wallpaper()
{
    const auto any = [&] {
        return QColor::fromHsv(dice.between(0, 359), dice.between(20, 190), dice.between(40, 220));
    };
    switch (dice.between(0, 3)) {
    case 0:
        canvas.fill(screen(), any());
        return;
    case 1:
        photograph();
        return;
    default:
        QLinearGradient gradient({0, 0}, dice.chance(50) ? QPointF(screen().bottomRight())
                                                         : QPointF(screen().bottomLeft()));
        gradient.setColorAt(0, any());
        if (dice.chance(50))
            gradient.setColorAt(dice.between(30, 70) / 100.0, any());
        gradient.setColorAt(1, any());
        canvas.painter().fillRect(screen(), gradient);
    }
}

QRect Stage::bar()
{
    const Look own = look(dice.chance(70));
    const TextStyle style = own.text();
    const int height = canvas.lineHeight(style) + dice.between(6, 14);
    const bool below = dice.chance(30);
    const QRect bar(0, below ? screen().height() - height : 0, screen().width(), height);
    canvas.fill(bar, own.panel);
    const int middle = screen().width() / 2;
    const QString clock = words.date() + u' ' + words.time();
    int x = 12;
    for (int entries = dice.between(2, 5); entries > 0; --entries) {
        const QRect room(x, bar.top(), middle - 140 - x, height);
        x = canvas.textIn(room, words.name(), entries == 1 ? style.heavy() : style) + 16;
    }
    const int width = canvas.width(clock, style);
    canvas.textIn({screen().width() - width - 14, bar.top(), width, height}, clock, style);
    return below ? screen().adjusted(0, 0, 0, -height) : screen().adjusted(0, height, 0, 0);
}

void Stage::shadow(const QRect& frame, double radius)
{
    const int reach = dice.between(8, 22);
    const int drop = dice.between(2, 8);
    canvas.shade(frame.adjusted(-reach, -reach, reach, reach + drop));
    const QColor dim(0, 0, 0, dice.between(60, 120) / reach);
    for (int ring = reach; ring > 0; --ring)
        canvas.fillRounded(frame.adjusted(-ring, drop - ring, ring, drop + ring), dim,
                           radius + ring);
}

QRect Stage::titleBar(const QRect& frame, const Look& look)
{
    const TextStyle style = dice.chance(50) ? look.bold() : look.text();
    const int height = canvas.lineHeight(style) + dice.between(8, 18);
    const QRect bar(frame.topLeft(), QSize(frame.width(), height));
    canvas.fill(bar, look.panel);
    canvas.fill({bar.left(), bar.bottom(), bar.width(), 1}, look.line);
    const QString title = words.phrase(2, 4);
    const bool dotsLeft = dice.chance(40);
    const QList<QColor> dots =
        dotsLeft ? QList<QColor>{{0xff, 0x5f, 0x57}, {0xfe, 0xbc, 0x2e}, {0x28, 0xc8, 0x40}}
                 : QList<QColor>{look.second, look.second, look.second};
    for (int dot = 0; dot < 3; ++dot) {
        const int x = dotsLeft ? bar.left() + 14 + dot * 20 : bar.right() - 66 + dot * 20;
        const QRect round(x, bar.center().y() - 5, 11, 11);
        if (dotsLeft)
            canvas.fillRounded(round, dots[dot], 6);
        else
            canvas.outline(round, dots[dot], dot == 1 ? 0 : 5);
    }
    const QRect room = bar.adjusted(90, 0, -90, 0);
    if (dice.chance(60))
        canvas.textAmid(room, title, style);
    else
        canvas.textIn(dotsLeft ? room : room.adjusted(-76, 0, 0, 0), title, style);
    return frame.adjusted(0, height, 0, 0);
}

QRect Stage::window(const QRect& frame, const Look& look)
{
    const double radius = dice.chance(75) ? kCorner : 0;
    canvas.cover(frame);
    shadow(frame, radius);
    QPainterPath shape;
    shape.addRoundedRect(frame, radius, radius);
    canvas.fillRounded(frame, look.window, radius);
    canvas.painter().setClipPath(shape);
    return dice.chance(60) ? titleBar(frame, look) : frame;
}

void Stage::leaveWindow()
{
    canvas.painter().setClipping(false);
}

QList<QRect> Stage::sideBySide(const QRect& area, int count)
{
    QList<QRect> windows;
    int left = area.left();
    for (int place = 0; place < count; ++place) {
        const int share = (area.right() - left) / (count - place);
        const int width = place + 1 == count ? share : share * dice.between(85, 115) / 100;
        windows += QRect(left, area.top(), width, area.height())
                       .adjusted(dice.between(10, 28), dice.between(14, 36), -dice.between(10, 28),
                                 -dice.between(14, 60));
        left += width;
    }
    return windows;
}

QRect Stage::button(QPoint at, const QString& text, const TextStyle& style, const QColor& colour)
{
    const QRect area(at, QSize(canvas.width(text, style) + dice.between(20, 34),
                               canvas.lineHeight(style) + dice.between(8, 16)));
    const int radius = dice.pick<int>({3, 6, area.height() / 2});
    canvas.fillRounded(area, colour, radius);
    canvas.textAmid(area.adjusted(4, 0, -4, 0), text, style.coloured(inkOn(colour)));
    return area;
}

QRect Stage::pill(QPoint at, const QString& text, const TextStyle& style, const QColor& colour)
{
    const QRect area(at, QSize(canvas.width(text, style) + 14, canvas.lineHeight(style) + 2));
    canvas.fillRounded(area, colour, area.height() / 2.0);
    canvas.textAmid(area, text, style.coloured(inkOn(colour)));
    return area;
}

void Stage::field(const QRect& area, const QString& text, const TextStyle& style, const Look& look)
{
    canvas.fillRounded(area, look.dark ? look.panel : QColor(Qt::white), 5);
    canvas.outline(area, dice.chance(20) ? look.accent : look.line, 5);
    canvas.textIn(area.adjusted(10, 0, -10, 0), text, style);
}

} // namespace mossbank::test
