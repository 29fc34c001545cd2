// SPDX-License-Identifier: Apache-2.0
#include "tests/Scenes/Scene.h"

#include "tests/Scenes/Layouts.h"

#include <algorithm>

namespace mossbank::test {

namespace {

using namespace Qt::StringLiterals;

struct Kind {
    Layout layout;
    const char* name;
    void (*paint)(Stage&);
    /// Of a hundred words.
    int turkish;
};

const QList<Kind>& kinds()
{
    static const QList<Kind> kKinds = {
        {Layout::Article, "article", paintArticle, 0},
        {Layout::Browser, "browser", paintBrowser, 0},
        {Layout::Chat, "chat", paintChat, 0},
        {Layout::Code, "code", paintCode, 0},
        {Layout::Dashboard, "dashboard", paintDashboard, 0},
        {Layout::Dialog, "dialog", paintDialog, 0},
        {Layout::Files, "files", paintFiles, 0},
        {Layout::Mail, "mail", paintMail, 0},
        {Layout::Overlap, "overlap", paintOverlap, 0},
        {Layout::Settings, "settings", paintSettings, 0},
        {Layout::Sheet, "sheet", paintSheet, 0},
        {Layout::Terminals, "terminals", paintTerminals, 0},
        {Layout::Turkish, "turkish", paintLetters, 100},
        {Layout::TurkishAndEnglish, "turkish-english", paintLetters, 50},
        {Layout::Workbench, "workbench", paintWorkbench, 0},
    };
    return kKinds;
}

const Kind& kindOf(Layout layout)
{
    const auto kind = std::find_if(kinds().cbegin(), kinds().cend(),
                                   [&](const Kind& one) { return one.layout == layout; });
    Q_ASSERT(kind != kinds().cend());
    return *kind;
}

} // namespace

const QList<Layout>& allLayouts()
{
    static const QList<Layout> kLayouts = [] {
        QList<Layout> layouts;
        for (const Kind& kind : kinds())
            layouts += kind.layout;
        return layouts;
    }();
    return kLayouts;
}

QString layoutName(Layout layout)
{
    return QString::fromLatin1(kindOf(layout).name);
}

std::optional<QSize> sizeIn(const QString& text)
{
    constexpr int kLeast = 640;
    constexpr int kMost = 4096;
    const QStringList sides = text.split(u'x');
    if (sides.size() != 2)
        return {};
    const QSize size(sides[0].toInt(), sides[1].toInt());
    const bool isScreen = std::min(size.width(), size.height()) >= kLeast &&
                          std::max(size.width(), size.height()) <= kMost;
    return isScreen ? std::optional(size) : std::nullopt;
}

Scene makeScene(Layout layout, quint32 seed, std::optional<QSize> wanted)
{
    const Kind& kind = kindOf(layout);
    Dice dice(seed * 1000 + static_cast<quint32>(layout));
    SceneWords words(dice, kind.turkish);
    const QSize thrown = dice.pick<QSize>({{1280, 800}, {1920, 1080}, {1920, 1080}, {2048, 1152}});
    const QSize size = wanted.value_or(thrown);
    Lettering lettering;
    lettering.hinting = dice.pick<QFont::HintingPreference>(
        {QFont::PreferFullHinting, QFont::PreferVerticalHinting, QFont::PreferNoHinting});
    lettering.thirds = dice.chance(20);
    SceneCanvas canvas(size, lettering);
    Stage stage{canvas, dice, words, dice.between(12, size.width() > 1300 ? 16 : 14)};
    kind.paint(stage);
    return canvas.finished(u"%1-%2"_s.arg(layoutName(layout)).arg(seed));
}

} // namespace mossbank::test
