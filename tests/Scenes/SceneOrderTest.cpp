// SPDX-License-Identifier: Apache-2.0
//
// The words of a paragraph come one after the other, line by line, with nothing of what stands
// beside it in between.
#include "MossbankCore/Capture/ReadingOrder.h"
#include "MossbankCore/Capture/TextLineFinder.h"
#include "tests/Scenes/Scene.h"
#include "tests/Scenes/SceneFonts.h"

#include <QMap>
#include <QTest>

#include <algorithm>
#include <utility>

namespace mossbank::test {

using namespace Qt::StringLiterals;

namespace {

/// The line on which a word was found. -1 for none.
qsizetype lineOf(const ShownWord& word, const QList<QRect>& lines)
{
    for (qsizetype line = 0; line < lines.size(); ++line) {
        if (lines.at(line).contains(word.box.center()))
            return line;
    }
    return -1;
}

/// The words line by line as they are read, each as its number in the order of drawing.
QList<qsizetype> asRead(const QList<ShownWord>& shown, const QList<QRect>& lines)
{
    QMap<std::pair<qsizetype, int>, qsizetype> places;
    for (qsizetype word = 0; word < shown.size(); ++word) {
        const qsizetype line = lineOf(shown.at(word), lines);
        if (line >= 0)
            places.insert({line, shown.at(word).box.left()}, word);
    }
    return places.values();
}

} // namespace

class SceneOrderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY2(missingFonts().isEmpty(), qPrintable(missingFonts())); }
    void aParagraphIsReadInOneGo_data();
    void aParagraphIsReadInOneGo();
};

void SceneOrderTest::aParagraphIsReadInOneGo_data()
{
    QTest::addColumn<Layout>("layout");
    QTest::addColumn<quint32>("seed");
    for (const Layout layout : {Layout::Article, Layout::Browser, Layout::Chat, Layout::Mail,
                                Layout::Overlap, Layout::Turkish, Layout::TurkishAndEnglish}) {
        for (const quint32 seed : {1U, 2U, 3U, 4U, 5U, 6U})
            QTest::addRow("%s-%u", qPrintable(layoutName(layout)), seed) << layout << seed;
    }
}

void SceneOrderTest::aParagraphIsReadInOneGo()
{
    QFETCH(Layout, layout);
    QFETCH(quint32, seed);
    const Scene scene = makeScene(layout, seed);
    const QList<qsizetype> read =
        asRead(scene.shown, inReadingOrder(TextLineFinder::find(scene.image)));
    QMap<int, QList<qsizetype>> paragraphs;
    for (const qsizetype word : read) {
        if (const int paragraph = scene.shown.at(word).paragraph; paragraph > 0)
            paragraphs[paragraph].append(word);
    }
    QVERIFY(!paragraphs.isEmpty());
    qsizetype words = 0;
    for (const QList<qsizetype>& paragraph : std::as_const(paragraphs)) {
        QVERIFY2(std::ranges::is_sorted(paragraph),
                 qPrintable(scene.shown.at(paragraph.first()).text));
        const qsizetype begin = read.indexOf(paragraph.first());
        QVERIFY2(read.mid(begin, paragraph.size()) == paragraph,
                 qPrintable(u"torn apart: "_s + scene.shown.at(paragraph.first()).text));
        words += paragraph.size();
    }
    const auto all = std::ranges::count_if(
        scene.shown, [](const ShownWord& word) { return word.paragraph > 0; });
    QVERIFY2(words > all * 98 / 100, qPrintable(u"%1 of %2"_s.arg(words).arg(all)));
}

} // namespace mossbank::test

QTEST_MAIN(mossbank::test::SceneOrderTest)
#include "SceneOrderTest.moc"
