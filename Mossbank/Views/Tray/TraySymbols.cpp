// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Tray/TraySymbols.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace mossbank {

namespace {

const QColor kTile(0x3f, 0x6b, 0x4f);
const QColor kTileLight(0x55, 0x8a, 0x68);
const QColor kBars(0xff, 0xff, 0xff);
const QColor kLive(0xe0, 0x3c, 0x31);
const QColor kLock(0xe0, 0xa8, 0x3e);

// All drawn in a square of this side.
constexpr double kSide = 64;

void drawTile(QPainter& painter)
{
    constexpr double kMargin = 2;
    constexpr double kRadius = 15;
    QLinearGradient light(0, 0, 0, kSide);
    light.setColorAt(0, kTileLight);
    light.setColorAt(1, kTile);
    const QRectF tile(kMargin, kMargin, kSide - 2 * kMargin, kSide - 2 * kMargin);
    painter.setBrush(light);
    painter.drawRoundedRect(tile, kRadius, kRadius);
}

/// Layers, the older the fainter.
void drawBars(QPainter& painter)
{
    constexpr double kHeight = 8;
    constexpr double kStep = 14;
    constexpr double kLeft = 15;
    constexpr double kTop = 14;
    constexpr double kOpacities[] = {1.0, 0.85, 0.7};
    double top = kTop;
    for (const double opacity : kOpacities) {
        QColor colour = kBars;
        colour.setAlphaF(static_cast<float>(opacity));
        painter.setBrush(colour);
        painter.drawRoundedRect(QRectF(kLeft, top, kSide - 2 * kLeft, kHeight), 3, 3);
        top += kStep;
    }
}

/// Takes the tile away around a shape that is drawn over its corner.
void cutOut(QPainter& painter, const QPainterPath& shape)
{
    constexpr double kRim = 8;
    painter.save();
    painter.setCompositionMode(QPainter::CompositionMode_Clear);
    painter.setPen(QPen(Qt::black, kRim, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::black);
    painter.drawPath(shape);
    painter.restore();
}

void drawDisc(QPainter& painter)
{
    constexpr double kRadius = 15;
    QPainterPath disc;
    disc.addEllipse(QPointF(kSide - kRadius - 1, kSide - kRadius - 1), kRadius, kRadius);
    cutOut(painter, disc);
    painter.setBrush(kLive);
    painter.drawPath(disc);
}

void drawLock(QPainter& painter)
{
    constexpr QRectF kBody(31, 41, 32, 22);
    constexpr double kArch = 8;
    constexpr double kThick = 6;
    const QPointF middle(kBody.center().x(), kBody.top());
    QPainterPath body;
    body.addRoundedRect(kBody, 4, 4);
    QPainterPath arch;
    arch.moveTo(middle.x() - kArch, middle.y());
    arch.lineTo(middle.x() - kArch, middle.y() - 4);
    arch.arcTo(QRectF(middle.x() - kArch, middle.y() - 4 - kArch, 2 * kArch, 2 * kArch), 180, -180);
    arch.lineTo(middle.x() + kArch, middle.y());
    QPainterPathStroker stroker(QPen(kLock, kThick));
    const QPainterPath lock = body.united(stroker.createStroke(arch));
    cutOut(painter, lock);
    painter.setBrush(kLock);
    painter.drawPath(lock);
}

} // namespace

const QList<int>& TraySymbols::sizes()
{
    static const QList<int> kSizes = {16, 22, 24, 32, 48, 64};
    return kSizes;
}

TraySymbol TraySymbols::symbol(bool isRecording, bool isSecureInputPaused)
{
    if (isSecureInputPaused)
        return TraySymbol::SecureInput;
    return isRecording ? TraySymbol::Recording : TraySymbol::Resting;
}

QImage TraySymbols::image(TraySymbol symbol, int size)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / kSide, size / kSide);
    painter.setPen(Qt::NoPen);
    drawTile(painter);
    drawBars(painter);
    if (symbol == TraySymbol::Recording)
        drawDisc(painter);
    else if (symbol == TraySymbol::SecureInput)
        drawLock(painter);
    return image;
}

QIcon TraySymbols::icon(TraySymbol symbol)
{
    QIcon icon;
    for (const int size : sizes())
        icon.addPixmap(QPixmap::fromImage(image(symbol, size)));
    return icon;
}

} // namespace mossbank
