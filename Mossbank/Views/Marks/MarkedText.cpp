// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Marks/MarkedText.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <vector>

namespace mossbank {

namespace {

/// The lines that `text` takes at this width, at most so many. Whether that is all of it.
bool layOut(QTextLayout& layout, qreal width, int lines)
{
    qreal y = 0;
    layout.beginLayout();
    for (int number = 0; number < lines; ++number) {
        QTextLine line = layout.createLine();
        if (!line.isValid())
            break;
        line.setLineWidth(width);
        line.setPosition({0, y});
        y += line.height();
    }
    layout.endLayout();
    if (layout.lineCount() == 0)
        return true;
    const QTextLine last = layout.lineAt(layout.lineCount() - 1);
    return last.textStart() + last.textLength() >= layout.text().size();
}

/// `text` as far as it fits into so many lines, with an ellipsis at its end where that is not all.
QString fitting(const QString& text, const QFont& font, qreal width, int lines)
{
    QTextLayout layout(text, font);
    if (layOut(layout, width, lines))
        return text;
    const QTextLine last = layout.lineAt(layout.lineCount() - 1);
    const QString rest = text.mid(last.textStart(), 2 * last.textLength() + 1);
    return text.left(last.textStart()) +
           QFontMetricsF(font).elidedText(rest, Qt::ElideRight, width);
}

/// The rectangles behind this part of a text that has been laid out.
std::vector<QRectF> behind(const QTextLayout& layout, FoldedText::Range part)
{
    std::vector<QRectF> rectangles;
    for (int number = 0; number < layout.lineCount(); ++number) {
        const QTextLine line = layout.lineAt(number);
        const auto from = std::max<qsizetype>(part.start, line.textStart());
        const auto to =
            std::min<qsizetype>(part.start + part.length, line.textStart() + line.textLength());
        if (from >= to)
            continue;
        const qreal one = line.cursorToX(static_cast<int>(from));
        const qreal other = line.cursorToX(static_cast<int>(to));
        rectangles.push_back(
            QRectF(QPointF(one, line.y()), QPointF(other, line.y() + line.height())).normalized());
    }
    return rectangles;
}

} // namespace

MarkedText::MarkedText(QQuickItem* parent)
    : QQuickPaintedItem(parent)
{
    connect(this, &MarkedText::wordsChanged, this, &MarkedText::choose);
    connect(this, &MarkedText::changed, this, &MarkedText::measure);
}

void MarkedText::choose()
{
    // The signal of its own that it is told by is that of what is made here: it is the first to
    // be told.
    m_snippet = Snippet::of(m_whole, m_query);
    if (m_snippet.text.trimmed().isEmpty())
        m_snippet = {m_emptyText, {}};
    update();
}

void MarkedText::measure()
{
    setImplicitHeight(std::ceil(QFontMetricsF(m_font).height()) * m_maximumLineCount);
    update();
}

void MarkedText::paint(QPainter* painter)
{
    constexpr qreal kRoundness = 3;
    const QString text = fitting(m_snippet.text, m_font, width(), m_maximumLineCount);
    QTextLayout layout(text, m_font);
    layOut(layout, width(), m_maximumLineCount);
    QList<QTextLayout::FormatRange> formats;
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(m_markColor);
    for (const auto& mark : m_snippet.marks) {
        for (const QRectF& rectangle : behind(layout, mark))
            painter->drawRoundedRect(rectangle.adjusted(-1, 0, 1, 0), kRoundness, kRoundness);
        QTextCharFormat format;
        format.setForeground(m_markedColor);
        formats.append({static_cast<int>(mark.start), static_cast<int>(mark.length), format});
    }
    painter->setPen(m_color);
    layout.draw(painter, {0, 0}, formats);
}

} // namespace mossbank
