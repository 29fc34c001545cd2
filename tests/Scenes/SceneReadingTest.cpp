// SPDX-License-Identifier: Apache-2.0
//
// How well made desktops are read: one of every layout of the half on which the reader is tuned,
// and one of the half that is held back.
#include "Mossbank/Platform/PlatformFactory.h"
#include "tests/Scenes/ReadScene.h"
#include "tests/Scenes/Scene.h"
#include "tests/Scenes/SceneFonts.h"

#include <QTest>

namespace mossbank::test {

using namespace Qt::StringLiterals;

namespace {

constexpr double kLeastFound = 0.97;
constexpr double kLeastMean = 0.99;
constexpr double kMostJunk = 5;

} // namespace

class SceneReadingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void aDesktopIsRead_data();
    void aDesktopIsRead();
    void allTogetherAreReadWell();

private:
    std::unique_ptr<TextRecognizer> m_recognizer;
    QList<ReadScene> m_scenes;
};

void SceneReadingTest::initTestCase()
{
    QVERIFY2(missingFonts().isEmpty(), qPrintable(missingFonts()));
    m_recognizer = makeTextRecognizer();
}

void SceneReadingTest::aDesktopIsRead_data()
{
    QTest::addColumn<Layout>("layout");
    QTest::addColumn<quint32>("seed");
    for (const quint32 seed : {1U, 101U}) {
        for (const Layout layout : allLayouts())
            QTest::addRow("%s-%u", qPrintable(layoutName(layout)), seed) << layout << seed;
    }
}

void SceneReadingTest::aDesktopIsRead()
{
    QFETCH(Layout, layout);
    QFETCH(quint32, seed);
    const Scene scene = makeScene(layout, seed);
    m_scenes += readScene(scene.name, scene.image, scene.words, *m_recognizer);
    const Score& score = m_scenes.last().score;
    const QString figures = u"found %1, junk %2"_s.arg(score.found).arg(score.junkPerHundred);
    QVERIFY2(score.found >= kLeastFound, qPrintable(figures));
    QVERIFY2(score.junkPerHundred <= kMostJunk, qPrintable(figures));
}

void SceneReadingTest::allTogetherAreReadWell()
{
    const ReadScenes all = taken(m_scenes);
    QVERIFY2(all.meanFound >= kLeastMean, qPrintable(QString::number(all.meanFound)));
}

} // namespace mossbank::test

QTEST_MAIN(mossbank::test::SceneReadingTest)
#include "SceneReadingTest.moc"
