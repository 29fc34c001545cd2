// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/FixtureImage.h"

#include <QColor>
#include <QFont>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QPointF>
#include <QRectF>

#include <array>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

constexpr int kWidth = 1440;
constexpr int kHeight = 900;

QColor white(double part)
{
    return QColor::fromRgbF(static_cast<float>(part), static_cast<float>(part),
                            static_cast<float>(part));
}

const QColor kBackdrop = QColor::fromRgbF(0.18F, 0.24F, 0.28F);
const QColor kDarkGrey = white(1.0 / 3);
const QColor kGrey = white(0.5);

/// Paints by places counted from the lower left corner, a text by that of its line.
class Canvas {
public:
    explicit Canvas(QImage& image)
        : m_painter(&image)
        , m_font(QFontDatabase::systemFont(QFontDatabase::GeneralFont))
    {
        m_painter.setRenderHint(QPainter::Antialiasing);
        m_painter.setPen(Qt::NoPen);
        // Coloured edges look other on every screen.
        m_font.setStyleStrategy(QFont::NoSubpixelAntialias);
    }

    bool isReady() const { return m_painter.isActive(); }

    void rectangle(double x, double y, double width, double height, const QColor& colour)
    {
        m_painter.fillRect(flipped(x, y, width, height), colour);
    }

    void window(double x, double y, double width, double height, double radius,
                const QColor& colour)
    {
        m_painter.setBrush(colour);
        m_painter.drawRoundedRect(flipped(x, y, width, height), radius, radius);
    }

    void disc(double x, double y, double across, const QColor& colour)
    {
        m_painter.setBrush(colour);
        m_painter.drawEllipse(flipped(x, y, across, across));
    }

    void text(double x, double y, int size, const QColor& colour, const QString& text,
              QFont::Weight weight = QFont::Normal)
    {
        m_font.setPixelSize(size);
        m_font.setWeight(weight);
        m_painter.setFont(m_font);
        m_painter.setPen(colour);
        const double baseline = kHeight - y - QFontMetricsF(m_font).descent();
        m_painter.drawText(QPointF(x, baseline), text);
        m_painter.setPen(Qt::NoPen);
    }

private:
    static QRectF flipped(double x, double y, double width, double height)
    {
        return {x, kHeight - y - height, width, height};
    }

    QPainter m_painter;
    QFont m_font;
};

void paintWindow(Canvas& canvas, const QString& app, const QString& title)
{
    canvas.rectangle(0, 0, kWidth, kHeight, kBackdrop);
    canvas.window(80, 65, 1280, 755, 12, white(0.93));
    canvas.rectangle(80, 752, 1280, 52, white(0.87));
    canvas.disc(100, 774, 13, QColor(0xff, 0x3b, 0x30));
    canvas.disc(124, 774, 13, QColor(0xff, 0xcc, 0x00));
    canvas.disc(148, 774, 13, QColor(0x28, 0xcd, 0x41));
    canvas.text(30, 866, 16, Qt::white, app + u"     File     Edit     View     Window     Help"_s);
    canvas.text(485, 770, 19, kDarkGrey, title);
}

void paintSide(Canvas& canvas)
{
    static const std::array<QString, 5> kRows = {u"All notes"_s, u"Personal"_s, u"Projects"_s,
                                                 u"Research"_s, u"Archive"_s};
    constexpr std::size_t kChosen = 2;
    constexpr double kFirst = 645;
    constexpr double kStep = 43;
    canvas.text(115, 697, 12, kGrey, u"SAMPLE WORKSPACE"_s);
    for (std::size_t row = 0; row < kRows.size(); ++row) {
        canvas.text(117, kFirst - static_cast<double>(row) * kStep, 18, kDarkGrey, kRows.at(row),
                    row == kChosen ? QFont::DemiBold : QFont::Normal);
    }
    canvas.rectangle(300, 65, 1, 687, white(0.8));
}

void paintBody(Canvas& canvas, const QStringList& lines)
{
    constexpr double kFirst = 659;
    constexpr double kStep = 57;
    for (qsizetype line = 0; line < lines.size(); ++line) {
        canvas.text(358, kFirst - static_cast<double>(line) * kStep, line == 0 ? 33 : 21, kDarkGrey,
                    lines.at(line));
    }
    canvas.text(360, 99, 14, kGrey, u"Fictional sample content • Mossbank development fixture"_s);
}

} // namespace

std::optional<QImage> fixtureImage(const QString& app, const QString& title,
                                   const QStringList& lines)
{
    // Without one Qt ends a program that asks for a font.
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return std::nullopt;
    QImage image(kWidth, kHeight, QImage::Format_RGBA8888_Premultiplied);
    if (image.isNull())
        return std::nullopt;
    Canvas canvas(image);
    if (!canvas.isReady())
        return std::nullopt;
    paintWindow(canvas, app, title);
    paintSide(canvas);
    paintBody(canvas, lines);
    return image;
}

} // namespace mossbank
