// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/TextLineFinder.h"

#include "tests/Core/Capture/DrawnText.h"
#include "tests/Core/Capture/FoundLines.h"

#include <QElapsedTimer>
#include <QTest>

#include <algorithm>
#include <random>

namespace mossbank {

class TextLineFinderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void textIsFoundWhateverItsColours_data()
    {
        QTest::addColumn<QRgb>("ink");
        QTest::addColumn<QRgb>("background");
        QTest::newRow("black on white") << kBlack << kWhite;
        QTest::newRow("white on black") << kWhite << kBlack;
        QTest::newRow("grey on white") << qRgb(170, 170, 170) << kWhite;
        QTest::newRow("grey on dark") << qRgb(90, 90, 95) << qRgb(30, 30, 35);
        QTest::newRow("white on red") << kWhite << qRgb(200, 40, 40);
        QTest::newRow("blue on red of the same lightness")
            << qRgb(60, 60, 220) << qRgb(170, 40, 40);
    }
    void textIsFoundWhateverItsColours()
    {
        QFETCH(QRgb, ink);
        QFETCH(QRgb, background);
        QImage picture = plain({300, 100}, background);
        const QRect letters = write(picture, {30, 40}, {4, 3}, ink);
        QCOMPARE(found(picture).size(), 1);
        QVERIFY(isAround(found(picture).first(), letters));
    }

    void textIsFoundWhateverItsSize_data()
    {
        QTest::addColumn<int>("height");
        for (const int height : {6, 7, 9, 12, 16, 24, 40, 60, 66, 90, 118})
            QTest::addRow("%d pixels", height) << height;
    }
    void textIsFoundWhateverItsSize()
    {
        QFETCH(int, height);
        QImage picture = plain({1000, 200});
        const QRect letters = write(picture, {60, 40}, {4, 3}, kBlack, height);
        QCOMPARE(found(picture).size(), 1);
        QVERIFY(isAround(found(picture).first(), letters));
    }

    void darkAndLightPanelsSideBySideAreBothRead()
    {
        QImage picture = plain({400, 60});
        fill(picture, {200, 0, 200, 60}, qRgb(20, 20, 30));
        const QRect left = write(picture, {20, 20}, {5});
        const QRect right = write(picture, {260, 20}, {5}, kWhite);
        QCOMPARE(found(picture).size(), 2);
        QVERIFY(isAround(found(picture).first(), left));
        QVERIFY(isAround(found(picture).last(), right));
    }

    void textOnAButtonIsFoundAndTheButtonIsNot()
    {
        QImage picture = plain({300, 120});
        fill(picture, {50, 20, 180, 80}, qRgb(40, 90, 200));
        const QRect letters = write(picture, {90, 54}, {6}, kWhite);
        QCOMPARE(found(picture).size(), 1);
        QVERIFY(isAround(found(picture).first(), letters));
    }

    void wordsOfALineAreOneLine()
    {
        QImage picture = plain({600, 60});
        const QRect letters = write(picture, {10, 20}, {3, 5, 1, 4, 7, 2});
        QCOMPARE(found(picture).size(), 1);
        QVERIFY(isAround(found(picture).first(), letters));
    }

    void whatIsFarApartIsNoLine()
    {
        QImage picture = plain({400, 60});
        const QRect left = write(picture, {10, 20}, {4});
        const QRect right = write(picture, {300, 20}, {4});
        QCOMPARE(found(picture).size(), 2);
        QVERIFY(isAround(found(picture).first(), left));
        QVERIFY(isAround(found(picture).last(), right));
    }

    void whatStandsHigherIsAnotherLine()
    {
        // As near as a word is to the next.
        QImage picture = plain({400, 60});
        const QRect left = write(picture, {10, 20}, {4});
        const QRect right = write(picture, {left.right() + 14, 27}, {4});
        QCOMPARE(found(picture).size(), 2);
        QVERIFY(isAround(found(picture).first(), left));
        QVERIFY(isAround(found(picture).last(), right));
    }

    void linesBelowEachOtherAreLinesOfTheirOwn_data()
    {
        QTest::addColumn<int>("between");
        for (const int between : {1, 2, 5, 20})
            QTest::addRow("%d pixels apart", between) << between;
    }
    void linesBelowEachOtherAreLinesOfTheirOwn()
    {
        QFETCH(int, between);
        QImage picture = plain({300, 150});
        QList<QRect> letters;
        for (int line = 0; line < 4; ++line)
            letters.append(write(picture, {20, 10 + line * (12 + between)}, {5, 4}));
        const QList<QRect> lines = found(picture);
        QCOMPARE(lines.size(), letters.size());
        for (qsizetype line = 0; line < lines.size(); ++line)
            QVERIFY(isAround(lines.at(line), letters.at(line)));
    }

    void whatStandsBesideTwoLinesDoesNotJoinThem_data()
    {
        QTest::addColumn<QRect>("mark");
        QTest::newRow("a bar at what is quoted") << QRect(16, 28, 3, 28);
        QTest::newRow("the picture of who speaks") << QRect(-12, 28, 30, 30);
    }
    void whatStandsBesideTwoLinesDoesNotJoinThem()
    {
        QFETCH(QRect, mark);
        QImage picture = plain({300, 90});
        fill(picture, mark.translated(20, 0), qRgb(15, 143, 147));
        const QRect first = write(picture, {50, 29}, {5, 4});
        const QRect second = write(picture, {50, 45}, {5, 6});
        const QList<QRect> lines = found(picture);
        const auto isFound = [&](const QRect& letters) {
            return std::ranges::any_of(lines,
                                       [&](const QRect& line) { return isAround(line, letters); });
        };
        QVERIFY(isFound(first));
        QVERIFY(isFound(second));
    }

    void linesOfWhichLettersTouchArePartedBetween()
    {
        QImage picture = plain({300, 80});
        write(picture, {20, 10}, {5, 6});
        write(picture, {20, 27}, {5, 6});
        // A descender of the first that reaches an ascender of the second.
        fill(picture, {26, 10, 2, 29}, kBlack);
        const QList<QRect> lines = found(picture);
        QCOMPARE(lines.size(), 2);
        QVERIFY(lines.first().bottom() >= 21 && lines.first().bottom() < 27);
        QVERIFY(lines.last().top() > 21 && lines.last().top() <= 27);
    }

    void linesWithManyDescendersArePartedBetween_data()
    {
        QTest::addColumn<int>("step");
        QTest::newRow("a quarter of the letters of each reaches the next") << 44;
        QTest::newRow("half of them") << 22;
    }
    void linesWithManyDescendersArePartedBetween()
    {
        QFETCH(int, step);
        QImage picture = plain({600, 80});
        QList<QRect> letters;
        for (const int top : {10, 24, 38})
            letters.append(write(picture, {20, top}, {20, 20}));
        for (int x = 20; x < 460; x += step) {
            fill(picture, {x, 22, 2, 2}, kBlack);
            fill(picture, {x, 36, 2, 2}, kBlack);
        }
        const QList<QRect> lines = found(picture);
        QCOMPARE(lines.size(), letters.size());
        for (qsizetype line = 0; line < lines.size(); ++line)
            QVERIFY(isAround(lines.at(line), letters.at(line)));
    }

    void aBarBesideLinesJoinsNone()
    {
        QImage picture = plain({300, 80});
        fill(picture, {10, 18, 3, 30}, qRgb(0, 140, 130));
        const QRect first = write(picture, {26, 18}, {9, 4}, qRgb(150, 150, 150));
        const QRect second = write(picture, {26, 36}, {5}, qRgb(20, 90, 200));
        const QList<QRect> lines = found(picture);
        QCOMPARE(lines.size(), 2);
        QVERIFY(isAround(lines.first(), first));
        QVERIFY(isAround(lines.last(), second));
    }

    void theSideOfABubbleJoinsNoLines()
    {
        QImage picture = plain({600, 100});
        const QRect first = write(picture, {40, 20}, {4, 3, 5});
        const QRect second = write(picture, {40, 35}, {4, 3});
        fill(picture, {25, 25, 1, 16}, kBlack);
        const QList<QRect> lines = found(picture);
        QCOMPARE(lines.size(), 2);
        QVERIFY(isAround(lines.first(), first));
        QVERIFY(isAround(lines.last(), second));
    }

    void specksOneBelowTheOtherDrawNoLineOut()
    {
        QImage picture = plain({300, 100});
        const QRect letters = write(picture, {20, 20}, {6, 5});
        for (int y = 34; y < 90; y += 5)
            fill(picture, {40, y, 2, 2}, kBlack);
        const QRect line = found(picture).value(0);
        QVERIFY(isAround(line, letters | QRect(40, 34, 2, 2)));
    }

    void aThinStrokeFromALetterDrawsNoLineOut()
    {
        QImage picture = plain({300, 120});
        const QRect letters = write(picture, {20, 70}, {9, 9});
        for (int y = 20; y < 70; ++y)
            picture.setPixel(100 + y % 2, y, kBlack);
        QCOMPARE(found(picture).size(), 1);
        QVERIFY(found(picture).first().contains(letters));
        QVERIFY(found(picture).first().height() <= 2 * letters.height());
    }

    void aPictureBesideAWindowDrawsNoLineOut()
    {
        // Rough, and in places of the window's colour, so that its edge is broken.
        QImage picture = plain({500, 200}, qRgb(35, 38, 48));
        std::mt19937 random(4);
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < 60; ++x) {
                const int value = static_cast<int>(random() % 60);
                picture.setPixel(x, y, qRgb(20 + value, 20 + value / 2, 40 + value));
            }
        }
        QList<QRect> letters;
        for (int line = 0; line < 8; ++line) {
            letters.append(write(picture, {70, 20 + line * 18}, {9, 9, 9}, qRgb(200, 205, 215)));
        }
        const QList<QRect> lines = found(picture);
        for (const QRect& wanted : letters) {
            const auto line = std::ranges::find_if(
                lines, [&](const QRect& candidate) { return candidate.contains(wanted); });
            QVERIFY(line != lines.end());
            const auto isOnIt = [&](const QRect& other) {
                return line->contains(other);
            };
            QCOMPARE(std::ranges::count_if(letters, isOnIt), 1);
        }
    }

    void dotsAndAccentsGoWithTheirLine()
    {
        QImage picture = plain({300, 80});
        const QRect letters = write(picture, {20, 30}, {5, 4});
        const QRect accent(42, 26, 3, 2);
        const QRect cedilla(75, 44, 3, 2);
        const QRect fullStop(letters.right() + 3, letters.bottom() - 1, 2, 2);
        for (const QRect& mark : {accent, cedilla, fullStop})
            fill(picture, mark, kBlack);
        QCOMPARE(found(picture).size(), 1);
        QVERIFY(isAround(found(picture).first(), letters | accent | cedilla | fullStop));
    }

    void whatIsNoTextIsNotFound_data()
    {
        QTest::addColumn<QImage>("picture");
        QImage picture = plain({400, 300});
        QTest::newRow("nothing") << picture;
        fill(picture, {50, 50, 200, 150}, kBlack);
        QTest::newRow("a panel") << picture;
        picture = plain({400, 300});
        fill(picture, {0, 100, 400, 1}, kBlack);
        fill(picture, {200, 0, 1, 300}, kBlack);
        QTest::newRow("rules") << picture;
        for (int x = 0; x < 400; ++x)
            fill(picture, {x, 0, 1, 300}, qRgb(x * 255 / 400, 80, 255 - x * 255 / 400));
        QTest::newRow("a gradient") << picture;
        picture = plain({400, 300});
        fill(picture, {100, 100, 1, 14}, kBlack);
        QTest::newRow("a caret") << picture;
        fill(picture, {200, 100, 4, 40}, kBlack);
        QTest::newRow("a thick one") << picture;
        QTest::newRow("no picture") << QImage();
        QTest::newRow("a pixel") << plain({1, 1});
        QTest::newRow("a row") << plain({500, 1}, kBlack);
        QTest::newRow("a column") << plain({1, 500}, kBlack);
        QTest::newRow("another format")
            << plain({40, 30}).convertToFormat(QImage::Format_Grayscale8);
    }
    void whatIsNoTextIsNotFound()
    {
        QFETCH(QImage, picture);
        QCOMPARE(found(picture), QList<QRect>());
    }

    void linesLieWithinThePictureUpToItsEdges()
    {
        QImage picture = plain({200, 60});
        const QRect first = write(picture, {0, 0}, {4});
        const QRect last = write(picture, {200 - first.width(), 48}, {4});
        const QList<QRect> lines = found(picture);
        QCOMPARE(lines.size(), 2);
        QVERIFY(lines.first().contains(first));
        QVERIFY(lines.last().contains(last));
        for (const QRect& line : lines)
            QVERIFY(picture.rect().contains(line));
    }

    void whatLooksLikeTextEverywhereEndsInTime_data()
    {
        QTest::addColumn<QImage>("picture");
        QImage picture = plain({2048, 1280});
        std::mt19937 random(3);
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                picture.setPixel(x, y, static_cast<QRgb>(random()) | 0xff000000);
        QTest::newRow("noise") << picture;
        picture.fill(kWhite);
        for (int y = 0; y + 8 < picture.height(); y += 10)
            for (int x = 0; x + 5 < picture.width(); x += 18)
                fill(picture, {x, y, 5, 8}, kBlack);
        QTest::newRow("tiles") << picture;
        picture.fill(kWhite);
        for (int y = 0; y < picture.height(); y += 3)
            for (int x = 0; x < picture.width(); x += 14)
                picture.setPixel(x, y, kBlack);
        QTest::newRow("dots") << picture;
    }
    void whatLooksLikeTextEverywhereEndsInTime()
    {
        QFETCH(QImage, picture);
        QElapsedTimer timer;
        timer.start();
        for (const QRect& line : found(picture))
            QVERIFY(picture.rect().contains(line));
        QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    }
};

} // namespace mossbank

QTEST_APPLESS_MAIN(mossbank::TextLineFinderTest)
#include "TextLineFinderTest.moc"
