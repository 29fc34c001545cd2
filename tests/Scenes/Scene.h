// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QList>
#include <QRect>
#include <QString>
#include <QStringList>

#include <optional>

namespace mossbank::test {

/// The kinds of desktop there are.
enum class Layout {
    Article,
    Browser,
    Chat,
    Code,
    Dashboard,
    Dialog,
    Files,
    Mail,
    Overlap,
    Settings,
    Sheet,
    Terminals,
    Turkish,
    TurkishAndEnglish,
    Workbench,
};

const QList<Layout>& allLayouts();
QString layoutName(Layout layout);

/// "1920x1080". Nothing where that is no size of a screen.
std::optional<QSize> sizeIn(const QString& text);

/// A word as it stands on the picture.
struct ShownWord {
    QString text;
    /// The least rectangle around its letters, in pixels.
    QRect box;
    /// What the rectangle's pixels were right after drawing, as a number: another one later says
    /// that something was painted over the word. Nothing where a shadow was to fall on it.
    quint64 pixels = 0;
    /// Which paragraph of several lines it is of, from 1; 0 for none.
    int paragraph = 0;
};

/// A made picture of a desktop and what can be read on it.
struct Scene {
    QString name;
    QImage image;
    /// Every word that is wholly to be seen, and no other, in the order of drawing.
    QStringList words;
    QList<ShownWord> shown;
};

/// The same layout and seed make the same picture. What reads the screen is tuned on seeds 1 to 99
/// only; 101 to 199 are held back to tell how well it reads what it was not tuned on.
///
/// `size`: in pixels; absent, one of several is thrown for.
///
/// Threading: the thread of the QGuiApplication (the offscreen platform will do).
/// Errors: throws std::runtime_error naming the package of a font that is not installed.
Scene makeScene(Layout layout, quint32 seed, std::optional<QSize> size = {});

/// As ShownWord::pixels. The highest and the lowest row are left out: between tight lines they
/// belong to both.
quint64 pixelsOf(const QImage& image, const QRect& area);

} // namespace mossbank::test
