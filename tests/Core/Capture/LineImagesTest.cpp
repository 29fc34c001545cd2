// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/LineImages.h"

#include "tests/Core/Capture/ImagesOfLines.h"

#include <QTest>

namespace mossbank {

class LineImagesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aLineIsOneImageOfBlackOnWhite()
    {
        const QList<QImage> images = plainImages();
        QCOMPARE(images.size(), 1);
        QCOMPARE(images.first().format(), QImage::Format_Grayscale8);
        // The letters are 12 high, and some white is around them.
        QCOMPARE(images.first().height(), 16);
        QCOMPARE(valueAt(images.first(), 0, 0), 255);
        QCOMPARE(darkest(images.first()), 0);
    }

    void allColoursGiveTheSameImage_data()
    {
        QTest::addColumn<QRgb>("ink");
        QTest::addColumn<QRgb>("background");
        QTest::newRow("white on black") << kWhite << kBlack;
        QTest::newRow("light grey on white") << qRgb(190, 190, 190) << kWhite;
        QTest::newRow("white on green") << kWhite << qRgb(30, 140, 60);
        QTest::newRow("red on dark") << qRgb(220, 60, 60) << qRgb(25, 25, 30);
    }
    void allColoursGiveTheSameImage()
    {
        QFETCH(QRgb, ink);
        QFETCH(QRgb, background);
        QImage picture = plain(kSize, background);
        const QRect line = write(picture, kPlace, {4, 3}, ink);
        QCOMPARE(wholeImages(picture, line, {line}), plainImages());
    }

    void eachWordIsAsDarkAsTheNext()
    {
        QImage picture = plain(kSize);
        const QRect bold = write(picture, kPlace, {4});
        const QRect faint = write(picture, {bold.right() + 9, 30}, {3}, qRgb(180, 180, 180));
        const QRect line = bold | faint;
        const QList<QImage> images = wholeImages(picture, line, {line});
        QCOMPARE(images.size(), 1);
        QCOMPARE(darkest(images.first().copy(0, 0, 30, 16)), 0);
        QCOMPARE(darkest(images.first().copy(bold.width() + 8, 0, 30, 16)), 0);
    }

    void aShadowIsNotMadeALetter()
    {
        QImage picture = plain(kSize);
        const QRect line = write(picture, kPlace, {4, 3}, qRgb(225, 225, 225));
        const QList<QImage> images = wholeImages(picture, line, {line});
        QCOMPARE(images.size(), 1);
        QVERIFY(darkest(images.first()) > 50);
    }

    void aBoxBeforeTheWordsIsNoLetter_data()
    {
        QTest::addColumn<QRect>("box");  // from where the words begin
        QTest::addColumn<QRect>("hole"); // within it
        QTest::addColumn<int>("round");  // of its corners
        QTest::addColumn<bool>("isGone");
        const QRect box(-20, -1, 14, 14);
        QTest::newRow("a box") << box << QRect(1, 1, 12, 12) << 0 << true;
        QTest::newRow("a rounded box") << box << QRect(1, 1, 12, 12) << 1 << true;
        QTest::newRow("a box close by")
            << box.translated(5, 0) << QRect(1, 1, 12, 12) << 0 << false;
        QTest::newRow("open below") << box << QRect(1, 1, 12, 13) << 0 << false;
        QTest::newRow("a round letter") << box << QRect(2, 2, 10, 10) << 3 << false;
        QTest::newRow("a side of a field") << QRect(-10, -9, 1, 30) << QRect() << 0 << true;
        QTest::newRow("a stem") << QRect(-10, -3, 1, 18) << QRect() << 0 << false;
    }
    void aBoxBeforeTheWordsIsNoLetter()
    {
        QFETCH(QRect, box);
        QFETCH(QRect, hole);
        QFETCH(int, round);
        QFETCH(bool, isGone);
        QImage picture = plain(kSize);
        const QRect words = write(picture, kPlace, {4, 3});
        box.translate(kPlace);
        fill(picture, box, kBlack);
        fill(picture, hole.translated(box.topLeft()), kWhite);
        for (const QPoint& corner : {box.topLeft(), QPoint(box.right() - round + 1, box.top()),
                                     QPoint(box.left(), box.bottom() - round + 1),
                                     QPoint(box.right() - round + 1, box.bottom() - round + 1)})
            fill(picture, {corner, QSize(round, round)}, kWhite);
        const QRect line = words | box;
        const QList<QImage> images = wholeImages(picture, line, {line});
        QCOMPARE(images.size(), 1);
        QCOMPARE(images.first().width() == plainImages().first().width(), isGone);
    }

    void aWideGapPartsTheLine()
    {
        QImage picture = plain(kSize);
        const QRect left = write(picture, kPlace, {3});
        const QRect right = write(picture, {left.right() + 20, 30}, {3});
        const QRect line = left | right;
        const QList<QImage> images = wholeImages(picture, line, {line});
        QCOMPARE(images.size(), 2);
        QCOMPARE(images.first(), images.last());
    }

    void aLineLongerThanRecognisersTakeIsPartedBetweenWords()
    {
        constexpr int kWords = 400;
        constexpr QSize kLongest = {500 * 16 + 6, 16};
        QImage picture = plain({kWords * 50, kSize.height()});
        const QRect line = write(picture, kPlace, QList<int>(kWords, 4));
        QVERIFY(line.width() > 2 * kLongest.width());
        const QList<QImage> images = wholeImages(picture, line, {line});
        QCOMPARE(images.size(), 3);
        QImage alone = plain(kSize);
        const QRect word = write(alone, kPlace, {4});
        const int ofAWord = darkPixels(wholeImages(alone, word, {word}).first());
        int all = 0;
        for (const QImage& image : images) {
            QVERIFY(image.width() <= kLongest.width());
            QCOMPARE(image.height(), kLongest.height());
            QCOMPARE(darkPixels(image) % ofAWord, 0);
            all += darkPixels(image);
        }
        QCOMPARE(all, kWords * ofAWord);
    }

    void alsoALineWithoutAnyGapIsParted()
    {
        QImage picture = plain({20'000, kSize.height()});
        const QRect line = write(picture, kPlace, {1'600});
        // Each letter touches the next, no two of them side by side at the same height.
        for (int gap = 0; gap < 1'599; ++gap)
            fill(picture, {line.left() + 8 + gap * 11, line.top() + 2 + gap % 2 * 8, 3, 1}, kBlack);
        const QList<QImage> images = wholeImages(picture, line, {line});
        QCOMPARE(images.size(), 3);
        int columns = 0;
        for (const QImage& image : images) {
            QVERIFY(image.width() <= 500 * 16 + 6);
            columns += image.width();
        }
        QVERIFY(columns >= line.width());
    }

    void theBorderOfACellPartsTheLineAndIsNoLetter()
    {
        QImage picture = plain(kSize);
        const QRect left = write(picture, kPlace, {3});
        const QRect right = write(picture, {left.right() + 10, 30}, {3});
        fill(picture, {left.right() + 5, 0, 1, 80}, qRgb(120, 120, 120));
        const QRect line = left | right;
        const QList<QImage> images = wholeImages(picture, line, {line});
        QCOMPARE(images.size(), 2);
        QCOMPARE(images.first(), images.last());
    }

    void theCornerOfABadgeTakesNoLetterThatTouchesIt_data()
    {
        QTest::addColumn<QRgb>("outside");
        QTest::addColumn<bool>("isBesideIt");
        QTest::newRow("of another side") << kBlack << true;
        QTest::newRow("of the same side, by its point") << qRgb(240, 240, 240) << false;
    }
    void theCornerOfABadgeTakesNoLetterThatTouchesIt()
    {
        QFETCH(QRgb, outside);
        QFETCH(bool, isBesideIt);
        const QRgb badge = qRgb(30, 90, 200);
        QImage picture = plain(kSize, badge);
        const QRect line = write(picture, kPlace, {4, 3}, kWhite);
        const int whole = darkPixels(wholeImages(picture, line, {line}).first());
        // Steps down to the left and below, the last of which meets the foot of the first letter.
        const int x = line.left() - 1;
        const int y = isBesideIt ? line.bottom() : line.bottom() + 1;
        for (int step = 0; step < 8; ++step)
            fill(picture, {0, y + step, x + 1 - step, kSize.height() - y - step}, outside);
        const QList<QImage> images = wholeImages(picture, line, {line});
        QCOMPARE(images.size(), 1);
        QCOMPARE(darkPixels(images.first()), whole);
    }

    void aLetterThatReachesTheRimOfABadgeStays()
    {
        // White around it, as the letters are.
        QImage picture = plain(kSize, qRgb(30, 90, 200));
        const QRect line = write(picture, kPlace, {4, 3}, kWhite);
        const int whole = darkPixels(wholeImages(picture, line, {line}).first());
        const int rim = kPlace.y() + 12;
        fill(picture, {0, rim, kSize.width(), kSize.height() - rim}, kWhite);
        const QList<QImage> images = wholeImages(picture, line, {line});
        QCOMPARE(images.size(), 1);
        QCOMPARE(darkPixels(images.first()), whole);
    }

    void theSidesOfAFrameGoWithIt()
    {
        QImage picture = plain(kSize);
        const QRect line = write(picture, kPlace, {4, 3});
        const QRgb grey = qRgb(120, 120, 120);
        const QRect frame(line.left() - 3, line.top() - 3, line.width() + 6, 14);
        fill(picture, {frame.left(), frame.top(), frame.width(), 1}, grey);
        fill(picture, {frame.left(), frame.top(), 1, frame.height()}, grey);
        fill(picture, {frame.right(), frame.top(), 1, frame.height()}, grey);
        QCOMPARE(wholeImages(picture, line, {line}), plainImages());
    }

    void aLetterOfOneStrokeIsNoBorder()
    {
        QImage picture = plain(kSize);
        const QRect left = write(picture, kPlace, {3});
        const QRect stroke(left.right() + 4, 30, 2, 12);
        fill(picture, stroke, kBlack);
        const QRect line = left | stroke;
        const QList<QImage> images = wholeImages(picture, line, {line});
        QCOMPARE(images.size(), 1);
        constexpr int kMargins = 6;
        QCOMPARE(images.first().width(), line.width() + kMargins);
    }

    void aRuleOfATableTakesNoLetterThatStandsOnIt()
    {
        const QRgb grey = qRgb(200, 200, 200);
        QImage picture = plain(kSize);
        const QRect one = write(picture, kPlace, {4});
        const QRect other = write(picture, kPlace + QPoint(100, 0), {4});
        const int border = (one.right() + other.left()) / 2;
        fill(picture, {border, 0, 1, kSize.height()}, grey);
        fill(picture, {0, one.bottom() + 1, kSize.width(), 1}, grey);
        const QRect line = one | other;
        const QList<QImage> images = wholeImages(picture, line, {line});
        QCOMPARE(images.size(), 2);
        for (const QImage& image : images) {
            QCOMPARE(image.height(), 16);
            QCOMPARE(2 * darkPixels(image), darkPixels(images.first()) + darkPixels(images.last()));
        }
        QImage alone = plain(kSize);
        const QRect word = write(alone, kPlace, {4});
        QCOMPARE(darkPixels(images.first()), darkPixels(wholeImages(alone, word, {word}).first()));
    }

    void anIconIsNoLetter()
    {
        QImage picture = plain(kSize);
        const QRect icon = {60, 10, 46, 56};
        fill(picture, icon, qRgb(150, 150, 150));
        fill(picture, icon.adjusted(1, 1, -1, -1), qRgb(240, 240, 240));
        fill(picture, {67, 38, 32, 20}, qRgb(40, 60, 170));
        QVERIFY(wholeImages(picture, icon, {icon}).isEmpty());
    }

    void aFrameAroundAWordIsTakenFromIt()
    {
        QImage picture = plain(kSize);
        const QRect word = write(picture, kPlace, {4});
        const int letters = darkPixels(wholeImages(picture, word, {word}).first());
        const QRect frame = word.adjusted(-8, -8, 8, 8);
        for (const QRect& side : {QRect(frame.left(), frame.top(), frame.width(), 1),
                                  QRect(frame.left(), frame.bottom(), frame.width(), 1),
                                  QRect(frame.left(), frame.top(), 1, frame.height()),
                                  QRect(frame.right(), frame.top(), 1, frame.height())})
            fill(picture, side, kBlack);
        const QList<QImage> images = wholeImages(picture, frame, {frame});
        QCOMPARE(images.size(), 1);
        QCOMPARE(images.first().height(), 16);
        QCOMPARE(darkPixels(images.first()), letters);
    }

    void aBadgeIsAnImageOfItsOwn()
    {
        QImage picture = plain(kSize);
        const QRect left = write(picture, kPlace, {5});
        fill(picture, {left.right() + 5, 24, 70, 24}, qRgb(200, 40, 40));
        const QRect right = write(picture, {left.right() + 15, 30}, {5}, kWhite);
        const QRect line = left | right;
        const QList<QImage> images = wholeImages(picture, line, {line});
        QCOMPARE(images.size(), 2);
        QCOMPARE(darkest(images.last()), 0);
        QCOMPARE(images.last().size(), images.first().size());
    }

    void nothingOfWhatLiesAroundShows_data()
    {
        QTest::addColumn<QRect>("around");
        QTest::newRow("an edge below") << QRect(0, 44, 320, 1);
        QTest::newRow("an edge above") << QRect(0, 27, 320, 1);
        QTest::newRow("a panel to the left") << QRect(0, 0, 36, 80);
        QTest::newRow("a panel to the right") << QRect(125, 0, 195, 80);
    }
    void nothingOfWhatLiesAroundShows()
    {
        QFETCH(QRect, around);
        QImage picture = plain(kSize);
        const QRect line = write(picture, kPlace, {4, 3});
        fill(picture, around, qRgb(60, 60, 60));
        QCOMPARE(wholeImages(picture, line, {line}), plainImages());
    }

    void otherLinesDoNotShow_data()
    {
        QTest::addColumn<QPoint>("place");
        QTest::newRow("close above") << QPoint(40, 16);
        QTest::newRow("close below") << QPoint(40, 44);
    }
    void otherLinesDoNotShow()
    {
        QFETCH(QPoint, place);
        QImage picture = plain(kSize);
        const QRect line = write(picture, kPlace, {4, 3});
        const QRect other = write(picture, place, {5, 4});
        QCOMPARE(wholeImages(picture, line, {line, other}), plainImages());
        QCOMPARE(wholeImages(picture, other, {line, other}).size(), 1);
    }

    void theDotsOfTheLineBelowDoNotShow()
    {
        QImage picture = plain(kSize);
        const QRect line = write(picture, kPlace, {4, 3});
        const QRect dot(50, line.bottom() + 1, 2, 2);
        fill(picture, dot, kBlack);
        const QRect below = write(picture, {40, 46}, {5}) | dot;
        QCOMPARE(wholeImages(picture, line, {line, below}), plainImages());
    }

    void lettersUpToTheEdgesOfThePictureAreThere_data()
    {
        QTest::addColumn<QPoint>("place");
        const QRect letters = [] {
            QImage picture = plain(kSize);
            return write(picture, kPlace, {4, 3});
        }();
        QTest::newRow("left") << QPoint(0, 30);
        QTest::newRow("right") << QPoint(kSize.width() - letters.width(), 30);
        QTest::newRow("top") << QPoint(40, 0);
        QTest::newRow("bottom") << QPoint(40, kSize.height() - letters.height());
    }
    void lettersUpToTheEdgesOfThePictureAreThere()
    {
        QFETCH(QPoint, place);
        QImage picture = plain(kSize);
        const QRect line = write(picture, place, {4, 3});
        const QList<QImage> images = wholeImages(picture, line, {line});
        QCOMPARE(images.size(), 1);
        // All but the white around is as it is in the middle of the picture.
        QCOMPARE(darkPixels(images.first()), darkPixels(plainImages().first()));
    }

    void theBorderOfAWindowAtTheEdgeOfThePictureIsNoLetter()
    {
        QImage picture = plain(kSize);
        fill(picture, {0, 0, 4, kSize.height()}, qRgb(60, 60, 60));
        const QRect letters = write(picture, {10, 30}, {4, 3});
        const QRect line(0, 30, letters.right() + 1, letters.height());
        QCOMPARE(wholeImages(picture, line, {line}), plainImages());
    }

    void whereThereAreNoLettersThereIsNoImage_data()
    {
        QTest::addColumn<QRect>("line");
        QTest::newRow("nothing drawn") << QRect(40, 30, 100, 12);
        QTest::newRow("a pixel") << QRect(40, 30, 1, 1);
        QTest::newRow("all of the picture") << QRect(QPoint(0, 0), kSize);
        QTest::newRow("partly outside") << QRect(-10, -5, 100, 12);
    }
    void whereThereAreNoLettersThereIsNoImage()
    {
        QFETCH(QRect, line);
        QCOMPARE(wholeImages(plain(kSize), line, {line}), QList<QImage>());
    }
};

} // namespace mossbank

QTEST_APPLESS_MAIN(mossbank::LineImagesTest)
#include "LineImagesTest.moc"
