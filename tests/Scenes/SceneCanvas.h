// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/Scenes/Scene.h"

#include <QColor>
#include <QFont>
#include <QImage>
#include <QList>
#include <QPainter>
#include <QRect>
#include <QString>

namespace mossbank::test {

struct TextStyle {
    QString family;
    int pixels = 13;
    QColor colour = Qt::black;
    bool bold = false;
    bool italic = false;

    TextStyle coloured(const QColor& other) const;
    TextStyle sized(int other) const;
    TextStyle heavy() const;
};

/// A piece of a line that has a colour of its own.
struct Span {
    QString text;
    QColor colour;
    bool bold = false;
};

/// How letters are drawn: as desktops differ.
struct Lettering {
    QFont::HintingPreference hinting = QFont::PreferVerticalHinting;
    /// Each letter's edge lies on thirds of a pixel, so edges have coloured fringes.
    bool thirds = false;
};

/// A picture being painted, which knows every word that is to be seen on it.
///
/// A word is what stands between spaces. Only words that are there whole are known: not those
/// that a clip cut, that something opaque was painted over, or that have no letter or digit.
/// Positions are pixels of the picture. Threading: the thread of the QGuiApplication.
class SceneCanvas {
public:
    SceneCanvas(QSize size, Lettering lettering);

    QPainter& painter() { return m_painter; }
    QSize size() const { return m_image.size(); }

    QFont font(const TextStyle& style) const;
    /// From the top of the highest letter to the bottom of the lowest.
    int lineHeight(const TextStyle& style) const;
    int width(const QString& text, const TextStyle& style) const;
    /// `text` without the last words that do not fit into `width`; empty where none fits.
    QString fitting(const QString& text, const TextStyle& style, int width) const;

    /// One line with its upper left corner at `at`; the words that do not fit into `width` are
    /// left out. Returns where the line ends.
    int text(QPoint at, int width, const QString& text, const TextStyle& style);
    /// The same, ending at `right`. Returns where the line begins.
    int textUpTo(int right, int top, int width, const QString& text, const TextStyle& style);
    /// The same in the middle of `area`, both ways.
    void textAmid(const QRect& area, const QString& text, const TextStyle& style);
    /// The same beginning at the left of `area`, in the middle of its height.
    int textIn(const QRect& area, const QString& text, const TextStyle& style);
    /// A line of several colours, up to the last piece that fits into `width`.
    int spans(QPoint at, int width, const QList<Span>& spans, const TextStyle& style);
    /// Lines below each other, as many as fit into `area`. Returns where the last one ends.
    int paragraph(const QRect& area, const QString& text, const TextStyle& style, double spacing);
    /// A line that `clip` cuts; the words it cuts are not known.
    void textCutBy(const QRect& clip, QPoint at, const QString& text, const TextStyle& style);

    void fill(const QRect& area, const QColor& colour);
    void fillRounded(const QRect& area, const QColor& colour, double radius);
    void outline(const QRect& area, const QColor& colour, double radius);

    /// Something opaque comes to lie here: the words it touches are known no more.
    void cover(const QRect& area);
    /// A shadow comes to lie here: words stay, but look otherwise than when they were drawn.
    void shade(const QRect& area);

    /// The picture and its words; nothing can be painted afterwards.
    Scene finished(const QString& name);

private:
    void drawLine(QPoint at, const QList<Span>& spans, const TextStyle& style, const QRect& cutBy);
    void drawInThirds(const QRect& area, const QList<Span>& spans, const TextStyle& style,
                      QPoint at, const QRect& clip);
    QImage coverage(const QList<Span>& spans, const TextStyle& style, const QColor& colour,
                    QPoint offset, QSize size) const;
    quint64 pixelsIn(const QRect& area) const;

    Lettering m_lettering;
    QImage m_image;
    QPainter m_painter;
    QList<ShownWord> m_shown;
    int m_paragraphs = 0;
};

} // namespace mossbank::test
