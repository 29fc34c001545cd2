// SPDX-License-Identifier: Apache-2.0
#include "tests/Scenes/SceneCanvas.h"

#include "tests/Scenes/SceneFonts.h"

#include <QFontMetrics>
#include <QHashFunctions>
#include <QPainterPath>
#include <QRegularExpression>
#include <QTextLayout>

#include <algorithm>
#include <array>
#include <cmath>

namespace mossbank::test {

namespace {

using namespace Qt::StringLiterals;

bool canBeRead(const QString& word)
{
    return std::any_of(word.cbegin(), word.cend(),
                       [](QChar sign) { return sign.isLetterOrNumber(); });
}

/// Sets one line, with a colour for every span.
void setLine(QTextLayout& layout, const QList<Span>& spans, const QFont& font)
{
    QString text;
    QList<QTextLayout::FormatRange> ranges;
    for (const Span& span : spans) {
        QTextLayout::FormatRange range;
        range.start = static_cast<int>(text.size());
        range.length = static_cast<int>(span.text.size());
        range.format.setForeground(span.colour);
        if (span.bold)
            range.format.setFontWeight(QFont::Bold);
        ranges += range;
        text += span.text;
    }
    layout.setText(text);
    layout.setFont(font);
    layout.setFormats(ranges);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLineWidth(100'000);
    layout.endLayout();
}

} // namespace

quint64 pixelsOf(const QImage& image, const QRect& area)
{
    quint64 sum = 1;
    for (int y = area.top() + 1; y < area.bottom(); ++y) {
        const auto* const row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        sum = qHashBits(row + area.left(), static_cast<size_t>(area.width()) * sizeof(QRgb), sum);
    }
    return sum;
}

TextStyle TextStyle::coloured(const QColor& other) const
{
    TextStyle style = *this;
    style.colour = other;
    return style;
}

TextStyle TextStyle::sized(int other) const
{
    TextStyle style = *this;
    style.pixels = other;
    return style;
}

TextStyle TextStyle::heavy() const
{
    TextStyle style = *this;
    style.bold = true;
    return style;
}

SceneCanvas::SceneCanvas(QSize size, Lettering lettering)
    : m_lettering(lettering)
    , m_image(size, QImage::Format_RGB32)
    , m_painter(&m_image)
{
    m_painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
}

QFont SceneCanvas::font(const TextStyle& style) const
{
    QFont font = sceneFont(style.family, style.pixels);
    font.setBold(style.bold);
    font.setItalic(style.italic);
    font.setHintingPreference(m_lettering.hinting);
    font.setStyleStrategy(static_cast<QFont::StyleStrategy>(
        QFont::PreferAntialias | QFont::NoSubpixelAntialias | QFont::NoFontMerging));
    return font;
}

int SceneCanvas::lineHeight(const TextStyle& style) const
{
    const QFontMetrics metrics(font(style));
    return metrics.ascent() + metrics.descent();
}

int SceneCanvas::width(const QString& text, const TextStyle& style) const
{
    return static_cast<int>(std::ceil(QFontMetricsF(font(style)).horizontalAdvance(text))) + 1;
}

QString SceneCanvas::fitting(const QString& text, const TextStyle& style, int width) const
{
    QString left = text;
    while (!left.isEmpty() && this->width(left, style) > width)
        left.truncate(std::max<qsizetype>(0, left.lastIndexOf(u' ')));
    return left;
}

int SceneCanvas::text(QPoint at, int width, const QString& text, const TextStyle& style)
{
    const QString shown = fitting(text, style, width);
    drawLine(at, {{shown, style.colour, style.bold}}, style, m_image.rect());
    return at.x() + this->width(shown, style);
}

int SceneCanvas::textUpTo(int right, int top, int width, const QString& text,
                          const TextStyle& style)
{
    const QString shown = fitting(text, style, width);
    const int left = right - this->width(shown, style);
    drawLine({left, top}, {{shown, style.colour, style.bold}}, style, m_image.rect());
    return left;
}

void SceneCanvas::textAmid(const QRect& area, const QString& text, const TextStyle& style)
{
    const QString shown = fitting(text, style, area.width());
    const int top = area.top() + (area.height() - lineHeight(style)) / 2;
    const int left = area.left() + (area.width() - width(shown, style)) / 2;
    drawLine({left, top}, {{shown, style.colour, style.bold}}, style, m_image.rect());
}

int SceneCanvas::textIn(const QRect& area, const QString& text, const TextStyle& style)
{
    const int top = area.top() + (area.height() - lineHeight(style)) / 2;
    return this->text({area.left(), top}, area.width(), text, style);
}

int SceneCanvas::spans(QPoint at, int width, const QList<Span>& spans, const TextStyle& style)
{
    QList<Span> shown;
    QString whole;
    for (const Span& span : spans) {
        // A bold piece may be wider than it is reckoned here, by a pixel a letter at most.
        if (this->width(whole + span.text, style.heavy()) > width)
            break;
        whole += span.text;
        shown += span;
    }
    drawLine(at, shown, style, m_image.rect());
    return at.x() + this->width(whole, style);
}

int SceneCanvas::paragraph(const QRect& area, const QString& text, const TextStyle& style,
                           double spacing)
{
    const int height = lineHeight(style);
    const int step = std::max(height, static_cast<int>(std::lround(style.pixels * spacing)));
    QString rest = text;
    int top = area.top();
    const qsizetype before = m_shown.size();
    while (!rest.isEmpty() && top + height <= area.bottom()) {
        const QString line = fitting(rest, style, area.width());
        if (line.isEmpty())
            break;
        this->text({area.left(), top}, area.width(), line, style);
        rest = rest.mid(line.size()).trimmed();
        top += step;
    }
    ++m_paragraphs;
    for (qsizetype word = before; word < m_shown.size(); ++word)
        m_shown[word].paragraph = m_paragraphs;
    return top;
}

void SceneCanvas::textCutBy(const QRect& clip, QPoint at, const QString& text,
                            const TextStyle& style)
{
    drawLine(at, {{text, style.colour, style.bold}}, style, clip);
}

void SceneCanvas::drawLine(QPoint at, const QList<Span>& spans, const TextStyle& style,
                           const QRect& cutBy)
{
    if (spans.isEmpty() || spans.first().text.isEmpty())
        return;
    QRect clip = cutBy.intersected(m_image.rect());
    if (m_painter.hasClipping())
        clip = clip.intersected(m_painter.clipBoundingRect().toAlignedRect());
    QTextLayout layout;
    setLine(layout, spans, font(style));
    if (m_lettering.thirds) {
        const QRect natural = layout.lineAt(0).naturalTextRect().toAlignedRect();
        drawInThirds(natural.translated(at).adjusted(-3, -1, 3, 1), spans, style, at, clip);
    } else {
        m_painter.save();
        m_painter.setClipRect(clip, Qt::IntersectClip);
        layout.draw(&m_painter, at);
        m_painter.restore();
    }
    static const QRegularExpression kWord(u"\\S+"_s);
    const QTextLine line = layout.lineAt(0);
    // Bold letters are the wider ones, so their rectangle holds the others too.
    const bool bold =
        std::any_of(spans.cbegin(), spans.cend(), [](const Span& span) { return span.bold; });
    const QFontMetricsF metrics(font(bold ? style.heavy() : style));
    for (auto match = kWord.globalMatch(layout.text()); match.hasNext();) {
        const auto word = match.next();
        const double left = at.x() + line.cursorToX(static_cast<int>(word.capturedStart()));
        const QRectF ink = metrics.tightBoundingRect(word.captured());
        const QRect box = ink.translated(left, at.y() + line.ascent()).toAlignedRect();
        if (canBeRead(word.captured()) && clip.contains(box))
            m_shown.append({.text = word.captured(), .box = box, .pixels = pixelsIn(box)});
    }
}

/// How much of each third of a pixel the letters of one colour cover; white is wholly.
QImage SceneCanvas::coverage(const QList<Span>& spans, const TextStyle& style, const QColor& colour,
                             QPoint offset, QSize size) const
{
    QList<Span> alone = spans;
    for (Span& span : alone)
        span.colour = span.colour == colour ? QColor(Qt::white) : QColor(Qt::transparent);
    QTextLayout layout;
    setLine(layout, alone, font(style));
    QImage mask(size.width() * 3, size.height(), QImage::Format_RGB32);
    mask.fill(Qt::black);
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.scale(3, 1);
    layout.draw(&painter, offset);
    return mask;
}

void SceneCanvas::drawInThirds(const QRect& area, const QList<Span>& spans, const TextStyle& style,
                               QPoint at, const QRect& clip)
{
    QList<QColor> colours;
    for (const Span& span : spans) {
        if (!colours.contains(span.colour))
            colours += span.colour;
    }
    const QRect seen = area.intersected(clip);
    for (const QColor& colour : std::as_const(colours)) {
        const QImage mask = coverage(spans, style, colour, at - area.topLeft(), area.size());
        const std::array<int, 3> ink = {colour.red(), colour.green(), colour.blue()};
        for (int y = seen.top(); y <= seen.bottom(); ++y) {
            const auto* const covered =
                reinterpret_cast<const QRgb*>(mask.constScanLine(y - area.top()));
            for (int x = seen.left(); x <= seen.right(); ++x) {
                const QRgb below = m_image.pixel(x, y);
                std::array<int, 3> mixed = {qRed(below), qGreen(below), qBlue(below)};
                for (int third = 0; third < 3; ++third) {
                    const int place =
                        std::clamp((x - area.left()) * 3 + third, 1, area.width() * 3 - 2);
                    // Neighbouring thirds share, or the fringes would be garish.
                    const int part = (qRed(covered[place - 1]) + qRed(covered[place]) +
                                      qRed(covered[place + 1])) /
                                     3;
                    auto& channel = mixed[static_cast<size_t>(third)];
                    channel += (ink[static_cast<size_t>(third)] - channel) * part / 255;
                }
                m_image.setPixel(x, y, qRgb(mixed[0], mixed[1], mixed[2]));
            }
        }
    }
}

quint64 SceneCanvas::pixelsIn(const QRect& area) const
{
    return pixelsOf(m_image, area);
}

void SceneCanvas::fill(const QRect& area, const QColor& colour)
{
    m_painter.fillRect(area, colour);
}

void SceneCanvas::fillRounded(const QRect& area, const QColor& colour, double radius)
{
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(colour);
    m_painter.drawRoundedRect(area, radius, radius);
}

void SceneCanvas::outline(const QRect& area, const QColor& colour, double radius)
{
    m_painter.setPen(QPen(colour, 1));
    m_painter.setBrush(Qt::NoBrush);
    m_painter.drawRoundedRect(QRectF(area).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

void SceneCanvas::cover(const QRect& area)
{
    m_shown.removeIf([&](const ShownWord& word) { return word.box.intersects(area); });
}

void SceneCanvas::shade(const QRect& area)
{
    for (ShownWord& word : m_shown) {
        if (word.box.intersects(area))
            word.pixels = 0;
    }
}

Scene SceneCanvas::finished(const QString& name)
{
    m_painter.end();
    Scene scene{name, m_image, {}, m_shown};
    for (const ShownWord& word : std::as_const(m_shown))
        scene.words += word.text;
    return scene;
}

} // namespace mossbank::test
