// SPDX-License-Identifier: Apache-2.0
#include "tests/Scenes/Scene.h"

#include "tests/Scenes/SceneCanvas.h"
#include "tests/Scenes/SceneFonts.h"
#include "tests/Scenes/SceneWords.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace mossbank::test {

namespace {

using namespace Qt::StringLiterals;

const TextStyle kStyle{u"DejaVu Sans"_s, 16, Qt::black, false, false};

/// The widest step of brightness in any channel: nothing for a flat area.
int contrast(const QImage& image, const QRect& area)
{
    std::array<int, 3> least = {255, 255, 255};
    std::array<int, 3> most = {0, 0, 0};
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            const std::array<int, 3> channels = {qRed(pixel), qGreen(pixel), qBlue(pixel)};
            for (size_t channel = 0; channel < 3; ++channel) {
                least[channel] = std::min(least[channel], channels[channel]);
                most[channel] = std::max(most[channel], channels[channel]);
            }
        }
    }
    return std::max({most[0] - least[0], most[1] - least[1], most[2] - least[2]});
}

/// Rectangles are rounded outward, so that neighbours may share a column, or a row from each.
bool overlap(const QRect& one, const QRect& other)
{
    const QRect both = one.intersected(other);
    return both.width() > 1 && both.height() > 2;
}

SceneCanvas whiteCanvas()
{
    return SceneCanvas({400, 100}, {});
}

} // namespace

class SceneTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everyWordIsWholeAndAlone_data();
    void everyWordIsWholeAndAlone();
    void theSameSeedMakesTheSameScene_data();
    void theSameSeedMakesTheSameScene();
    void wordsThatAreCoveredAreNotShown();
    void wordsThatAreCutAreNotShown();
    void wordsThatTheirWindowCutsAreNotShown();
    void wordsThatDoNotFitAreLeftOut();
    void wordsPaintedOverLookOtherwise();
    void signsAreNoWords();
    void lettersOnThirdsHaveColouredEdges();
    void aMissingFontIsNamedWithItsPackage();
    void everyFontsPackageIsInstalledBySetUp();
    void wordsAreManyAndDiffer();
    void turkishCapitalsAreTurkish();
    void theMakerWritesPicturesAndWords();
    void theMakerWritesWhatIsNamedInTheSizeWanted();
    void theMakerRefusesWhatItDoesNotKnow_data();
    void theMakerRefusesWhatItDoesNotKnow();
};

void SceneTest::initTestCase()
{
    QVERIFY2(missingFonts().isEmpty(), qPrintable(missingFonts()));
}

void SceneTest::everyWordIsWholeAndAlone_data()
{
    QTest::addColumn<Layout>("layout");
    QTest::addColumn<quint32>("seed");
    for (const Layout layout : allLayouts()) {
        for (quint32 seed = 1; seed <= 2; ++seed)
            QTest::addRow("%s-%u", qPrintable(layoutName(layout)), seed) << layout << seed;
    }
}

void SceneTest::everyWordIsWholeAndAlone()
{
    QFETCH(Layout, layout);
    QFETCH(quint32, seed);
    const Scene scene = makeScene(layout, seed);
    QVERIFY(scene.words.size() >= 30);
    QCOMPARE(scene.shown.size(), scene.words.size());
    for (qsizetype place = 0; place < scene.shown.size(); ++place) {
        const ShownWord& word = scene.shown[place];
        QCOMPARE(word.text, scene.words[place]);
        QVERIFY2(scene.image.rect().contains(word.box), qPrintable(word.text));
        // An "I" alone may fill its rectangle, so what is around it counts too.
        const QRect around = word.box.adjusted(-1, -1, 1, 1).intersected(scene.image.rect());
        QVERIFY2(contrast(scene.image, around) >= 24, qPrintable(word.text));
        if (word.pixels != 0)
            QVERIFY2(pixelsOf(scene.image, word.box) == word.pixels,
                     qPrintable(word.text + u" is painted over"_s));
        for (qsizetype other = place + 1; other < scene.shown.size(); ++other)
            QVERIFY2(!overlap(word.box, scene.shown[other].box),
                     qPrintable(word.text + u" lies on "_s + scene.shown[other].text));
    }
}

void SceneTest::theSameSeedMakesTheSameScene_data()
{
    QTest::addColumn<Layout>("layout");
    for (const Layout layout : allLayouts())
        QTest::addRow("%s", qPrintable(layoutName(layout))) << layout;
}

void SceneTest::theSameSeedMakesTheSameScene()
{
    QFETCH(Layout, layout);
    const Scene first = makeScene(layout, 7);
    const Scene again = makeScene(layout, 7);
    const Scene other = makeScene(layout, 8);
    QCOMPARE(again.name, first.name);
    QCOMPARE(again.image, first.image);
    QCOMPARE(again.words, first.words);
    QVERIFY(other.words != first.words);
}

void SceneTest::wordsThatAreCoveredAreNotShown()
{
    SceneCanvas canvas = whiteCanvas();
    canvas.fill({0, 0, 400, 100}, Qt::white);
    canvas.text({10, 10}, 380, u"plum tree"_s, kStyle);
    canvas.text({10, 60}, 380, u"oak elm"_s, kStyle);
    canvas.cover({0, 0, 20, 40});
    QCOMPARE(canvas.finished(u"x"_s).words, (QStringList{u"tree"_s, u"oak"_s, u"elm"_s}));
}

void SceneTest::wordsThatAreCutAreNotShown()
{
    SceneCanvas canvas = whiteCanvas();
    canvas.fill({0, 0, 400, 100}, Qt::white);
    const int end = canvas.width(u"plum tr"_s, kStyle);
    canvas.textCutBy({0, 0, 10 + end, 100}, {10, 10}, u"plum tree oak"_s, kStyle);
    const Scene scene = canvas.finished(u"x"_s);
    QCOMPARE(scene.words, QStringList{u"plum"_s});
    QCOMPARE(contrast(scene.image, {10 + end, 0, 200, 100}), 0);
    QVERIFY(contrast(scene.image, {end - 5, 0, 15, 100}) > 100);
}

void SceneTest::wordsThatTheirWindowCutsAreNotShown()
{
    for (const bool thirds : {false, true}) {
        SceneCanvas canvas({400, 100}, {.thirds = thirds});
        canvas.fill({0, 0, 400, 100}, Qt::white);
        const int end = canvas.width(u"plum tr"_s, kStyle);
        canvas.painter().setClipRect(0, 0, 10 + end, 100);
        canvas.text({10, 10}, 380, u"plum tree oak"_s, kStyle);
        const Scene scene = canvas.finished(u"x"_s);
        QCOMPARE(scene.words, QStringList{u"plum"_s});
        QCOMPARE(contrast(scene.image, {10 + end, 0, 200, 100}), 0);
    }
}

void SceneTest::wordsThatDoNotFitAreLeftOut()
{
    SceneCanvas canvas = whiteCanvas();
    canvas.fill({0, 0, 400, 100}, Qt::white);
    const int room = canvas.width(u"plum tree"_s, kStyle);
    canvas.text({10, 10}, room, u"plum tree oak"_s, kStyle);
    canvas.text({10, 60}, room - 1, u"plum tree oak"_s, kStyle);
    const Scene scene = canvas.finished(u"x"_s);
    QCOMPARE(scene.words, (QStringList{u"plum"_s, u"tree"_s, u"plum"_s}));
    QCOMPARE(contrast(scene.image, {10 + room, 0, 380 - room, 100}), 0);
}

void SceneTest::wordsPaintedOverLookOtherwise()
{
    SceneCanvas canvas = whiteCanvas();
    canvas.fill({0, 0, 400, 100}, Qt::white);
    canvas.text({10, 10}, 380, u"plum tree"_s, kStyle);
    canvas.fill({10, 18, 8, 2}, Qt::red);
    const Scene scene = canvas.finished(u"x"_s);
    QCOMPARE(scene.shown.size(), 2);
    QVERIFY(pixelsOf(scene.image, scene.shown[0].box) != scene.shown[0].pixels);
    QCOMPARE(pixelsOf(scene.image, scene.shown[1].box), scene.shown[1].pixels);
}

void SceneTest::signsAreNoWords()
{
    SceneCanvas canvas = whiteCanvas();
    canvas.fill({0, 0, 400, 100}, Qt::white);
    canvas.text({10, 10}, 380, u"{ plum() += 3 ; · }"_s, kStyle);
    QCOMPARE(canvas.finished(u"x"_s).words, (QStringList{u"plum()"_s, u"3"_s}));
}

void SceneTest::lettersOnThirdsHaveColouredEdges()
{
    for (const bool thirds : {false, true}) {
        SceneCanvas canvas({400, 100}, {.hinting = QFont::PreferNoHinting, .thirds = thirds});
        canvas.fill({0, 0, 400, 100}, Qt::white);
        canvas.text({10, 10}, 380, u"willow"_s, kStyle);
        const Scene scene = canvas.finished(u"x"_s);
        QCOMPARE(scene.words, QStringList{u"willow"_s});
        const QRect box = scene.shown.first().box;
        QVERIFY(contrast(scene.image, box) > 150);
        QCOMPARE(contrast(scene.image, {0, 0, 400, box.top() - 1}), 0);
        bool coloured = false;
        for (int x = box.left(); x <= box.right(); ++x) {
            const QColor pixel = scene.image.pixelColor(x, box.center().y());
            coloured = coloured || pixel.saturation() > 20;
        }
        QCOMPARE(coloured, thirds);
    }
}

void SceneTest::aMissingFontIsNamedWithItsPackage()
{
    QStringList installed = plainFamilies() + serifFamilies() + codeFamilies();
    QCOMPARE(missingFonts(installed), QString());
    installed.removeAll(u"Hack"_s);
    QCOMPARE(missingFonts(installed),
             u"The font Hack is missing: install the package fonts-hack."_s);
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, sceneFont(u"No Such Family"_s, 12));
}

void SceneTest::everyFontsPackageIsInstalledBySetUp()
{
    QFile list(QStringLiteral(MOSSBANK_SOURCE_DIR "/packaging/debian-packages.txt"));
    QVERIFY(list.open(QIODevice::ReadOnly));
    const QString packages = u'\n' + QString::fromUtf8(list.readAll());
    static const QRegularExpression kPackage(u"package (\\S+)\\."_s);
    int named = 0;
    for (auto match = kPackage.globalMatch(missingFonts({})); match.hasNext(); ++named) {
        const QString package = match.next().captured(1);
        QVERIFY2(packages.contains(u'\n' + package + u' '), qPrintable(package));
    }
    QCOMPARE(named, (plainFamilies() + serifFamilies() + codeFamilies()).size());
}

void SceneTest::wordsAreManyAndDiffer()
{
    for (const auto& [text, least] :
         {std::pair{kEnglishWords, 1500}, std::pair{kTurkishWords, 300}}) {
        const QStringList words = QString::fromUtf16(text).split(u' ');
        QVERIFY(words.size() >= least);
        QCOMPARE(QSet<QString>(words.cbegin(), words.cend()).size(), words.size());
        QVERIFY(!words.contains(QString()));
    }
    for (const QChar letter : u"çğıöşüâ"_s)
        QVERIFY2(QString::fromUtf16(kTurkishWords).contains(letter), qPrintable(QString(letter)));
}

void SceneTest::turkishCapitalsAreTurkish()
{
    QCOMPARE(capitalised(u"ilçe"_s, true), u"İlçe"_s);
    QCOMPARE(capitalised(u"ısı"_s, true), u"Isı"_s);
    QCOMPARE(capitalised(u"ink"_s, false), u"Ink"_s);
    const Scene scene = makeScene(Layout::Turkish, 1);
    const QString words = scene.words.join(u' ');
    for (const QChar letter : u"çğıöşüİ"_s)
        QVERIFY2(words.contains(letter), qPrintable(QString(letter)));
}

void SceneTest::theMakerWritesPicturesAndWords()
{
    QTemporaryDir folder;
    QVERIFY(folder.isValid());
    QProcess maker;
    maker.start(QStringLiteral(MOSSBANK_SCENE_MAKER),
                {folder.path(), u"--seeds"_s, u"5"_s, u"5"_s});
    QVERIFY(maker.waitForFinished(100'000));
    QCOMPARE(maker.exitCode(), 0);
    const qsizetype layouts = allLayouts().size();
    QCOMPARE(QString::fromUtf8(maker.readAllStandardOutput()), u"%1 scenes\n"_s.arg(layouts));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), 2 * layouts);
    const Scene scene = makeScene(Layout::Mail, 5);
    QCOMPARE(QImage(folder.filePath(u"mail-5.png"_s)).convertToFormat(QImage::Format_RGB32),
             scene.image);
    QFile words(folder.filePath(u"mail-5.txt"_s));
    QVERIFY(words.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(words.readAll()), scene.words.join(u' ') + u'\n');
}

void SceneTest::theMakerWritesWhatIsNamedInTheSizeWanted()
{
    QTemporaryDir folder;
    QProcess maker;
    maker.start(QStringLiteral(MOSSBANK_SCENE_MAKER),
                {folder.path(), u"--seeds"_s, u"5"_s, u"6"_s, u"chat"_s, u"mail"_s, u"--size"_s,
                 u"1440x900"_s});
    QVERIFY(maker.waitForFinished(100'000));
    QCOMPARE(maker.exitCode(), 0);
    QCOMPARE(QDir(folder.path()).entryList({u"*.png"_s}),
             (QStringList{u"chat-5.png"_s, u"chat-6.png"_s, u"mail-5.png"_s, u"mail-6.png"_s}));
    QCOMPARE(QImage(folder.filePath(u"mail-6.png"_s)).size(), QSize(1440, 900));
}

void SceneTest::theMakerRefusesWhatItDoesNotKnow_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("one seed") << QStringList{u"--seeds"_s, u"5"_s};
    QTest::newRow("no seeds") << QStringList{};
    QTest::newRow("seeds backwards") << QStringList{u"--seeds"_s, u"5"_s, u"4"_s};
    QTest::newRow("no such layout") << QStringList{u"--seeds"_s, u"5"_s, u"5"_s, u"letter"_s};
    QTest::newRow("no size") << QStringList{u"--seeds"_s, u"5"_s, u"5"_s, u"--size"_s};
    QTest::newRow("half a size") << QStringList{u"--seeds"_s, u"5"_s, u"5"_s, u"--size"_s,
                                                u"1440"_s};
    QTest::newRow("no screen") << QStringList{u"--seeds"_s, u"5"_s, u"5"_s, u"--size"_s, u"9x9"_s};
}

void SceneTest::theMakerRefusesWhatItDoesNotKnow()
{
    QFETCH(QStringList, arguments);
    QTemporaryDir folder;
    QProcess maker;
    maker.start(QStringLiteral(MOSSBANK_SCENE_MAKER), QStringList(folder.path()) + arguments);
    QVERIFY(maker.waitForFinished(100'000));
    QVERIFY(maker.exitCode() != 0);
    QVERIFY(QDir(folder.path()).isEmpty());
}

} // namespace mossbank::test

QTEST_MAIN(mossbank::test::SceneTest)
#include "SceneTest.moc"
