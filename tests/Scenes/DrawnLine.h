// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QImage>
#include <QPainter>

namespace mossbank::test {

/// Where the first letter of a drawn line begins, in pixels.
inline constexpr double kLineStart = 6;

/// A grey image of one line, black on white.
inline QImage drawnLine(const QFont& font, const QString& text, double shift = 0)
{
    const QFontMetricsF metrics(font);
    QImage picture(static_cast<int>(metrics.horizontalAdvance(text) + 2 * kLineStart),
                   static_cast<int>(metrics.height()) + 2, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.setFont(font);
    painter.drawText(QPointF(kLineStart + shift, 1 + metrics.ascent()), text);
    painter.end();
    return picture.convertToFormat(QImage::Format_Grayscale8);
}

} // namespace mossbank::test
