// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/ColourSteps.h"

#include "tests/Core/Capture/DrawnText.h"

#include <QTest>

namespace mossbank {

class ColourStepsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aStepIsWhereTheColourChangesWithinARow()
    {
        QImage picture = plain({5, 2});
        picture.setPixel(2, 0, kBlack);
        const ColourSteps steps(picture);
        QCOMPARE(rowOf(steps, 0), QStringLiteral(".##.."));
        // From row to row there is none.
        QCOMPARE(rowOf(steps, 1), QStringLiteral("....."));
    }

    void theChannelThatChangesMostCounts_data()
    {
        QTest::addColumn<QRgb>("colour");
        QTest::addColumn<bool>("isStep");
        QTest::newRow("the same") << qRgb(100, 100, 100) << false;
        QTest::newRow("all by 22") << qRgb(122, 122, 122) << false;
        QTest::newRow("red by 23") << qRgb(123, 100, 100) << true;
        QTest::newRow("red by -23") << qRgb(77, 100, 100) << true;
        QTest::newRow("green by 23") << qRgb(100, 123, 100) << true;
        QTest::newRow("green by -23") << qRgb(100, 77, 100) << true;
        QTest::newRow("blue by -23") << qRgb(100, 100, 77) << true;
        QTest::newRow("blue by 23") << qRgb(100, 100, 123) << true;
        QTest::newRow("opacity") << qRgba(100, 100, 100, 0) << false;
    }
    void theChannelThatChangesMostCounts()
    {
        QFETCH(QRgb, colour);
        QFETCH(bool, isStep);
        QImage picture(2, 1, QImage::Format_ARGB32);
        picture.setPixel(0, 0, qRgb(100, 100, 100));
        picture.setPixel(1, 0, colour);
        QCOMPARE(ColourSteps(picture).at(0, 0), isStep);
    }

    void anEdgeTallerThanLettersIsLeftOut_data()
    {
        QTest::addColumn<int>("height");
        QTest::addColumn<bool>("isLeftOut");
        QTest::newRow("as a letter") << 64 << false;
        QTest::newRow("taller") << 65 << true;
    }
    void anEdgeTallerThanLettersIsLeftOut()
    {
        QFETCH(int, height);
        QFETCH(bool, isLeftOut);
        // Once in the middle and once down to the end of the picture.
        QImage picture = plain({20, 80});
        fill(picture, {4, 3, 3, height}, kBlack);
        fill(picture, {14, 80 - height, 3, height}, kBlack);
        const ColourSteps steps(picture);
        for (const int x : {3, 6, 13, 16})
            QCOMPARE(steps.at(x, 40), !isLeftOut);
        QCOMPARE(steps.at(3, 2), false);
    }

    void theEdgesOfAStemAreNotLeftOut_data()
    {
        QTest::addColumn<QSize>("stroke");
        QTest::addColumn<QRgb>("behind");
        QTest::addColumn<bool>("isLeftOut");
        QTest::newRow("a stem") << QSize(12, 100) << kWhite << false;
        QTest::newRow("of the largest letter") << QSize(12, 120) << kWhite << false;
        QTest::newRow("too tall") << QSize(12, 121) << kWhite << true;
        QTest::newRow("thin") << QSize(7, 100) << kWhite << false;
        QTest::newRow("too thin, as a frame") << QSize(6, 100) << kWhite << true;
        QTest::newRow("thick") << QSize(33, 100) << kWhite << false;
        QTest::newRow("too thick, as a panel") << QSize(34, 100) << kWhite << true;
        QTest::newRow("between two panels") << QSize(12, 100) << qRgb(200, 200, 200) << true;
    }
    void theEdgesOfAStemAreNotLeftOut()
    {
        QFETCH(QSize, stroke);
        QFETCH(QRgb, behind);
        QFETCH(bool, isLeftOut);
        QImage picture = plain({100, 140});
        const int end = 20 + stroke.width();
        fill(picture, {end, 10, 100 - end, stroke.height()}, behind);
        fill(picture, {20, 10, stroke.width(), stroke.height()}, kBlack);
        const ColourSteps steps(picture);
        QCOMPARE(steps.at(19, 60), !isLeftOut);
        QCOMPARE(steps.at(end - 1, 60), !isLeftOut);
        // All of it is of one piece.
        QCOMPARE(steps.count(60, 19, end), isLeftOut ? 0 : stroke.width() + 1);
        QCOMPARE(steps.at(18, 60), false);
        QCOMPARE(steps.at(end, 60), false);
    }

    void aStemMayHaveArmsAndIsOfOneColour_data()
    {
        QTest::addColumn<int>("arms");   // rows in which it goes on to the right
        QTest::addColumn<QRgb>("lower"); // the colour of its lower two thirds
        QTest::addColumn<bool>("isLeftOut");
        QTest::newRow("as of an E") << 55 << kBlack << false;
        QTest::newRow("more than a letter has") << 65 << kBlack << true;
        QTest::newRow("of two colours, as pictures one below the other")
            << 0 << qRgb(200, 30, 30) << false;
        QTest::newRow("speckled") << 0 << 0U << true;
    }
    void aStemMayHaveArmsAndIsOfOneColour()
    {
        QFETCH(int, arms);
        QFETCH(QRgb, lower);
        QFETCH(bool, isLeftOut);
        QImage picture = plain({200, 140});
        fill(picture, {20, 10, 12, 100}, kBlack);
        fill(picture, {32, 10, 100, arms}, kBlack);
        if (lower != kBlack)
            fill(picture, {20, 43, 12, 67}, lower);
        for (int y = 10; y < 110 && lower == 0; ++y)
            fill(picture, {20, y, 12, 1}, qRgb(y * 2, 0, 0));
        QCOMPARE(!ColourSteps(picture).at(19, 100), isLeftOut);
    }

    void whatReachesTheEndOfThePictureIsNoStem()
    {
        // Part of a picture beside a window, of whose colour it is in places.
        QImage picture = plain({100, 140});
        fill(picture, {0, 10, 13, 100}, kBlack);
        for (int y = 10; y < 110; y += 7)
            fill(picture, {0, y, 1, 4}, kWhite);
        QCOMPARE(ColourSteps(picture).at(12, 60), false);
    }

    void anEdgeMayBeBrokenByARowOrTwo_data()
    {
        QTest::addColumn<int>("rows");
        QTest::addColumn<bool>("isLeftOut");
        QTest::newRow("one") << 1 << true;
        QTest::newRow("two") << 2 << true;
        QTest::newRow("three, as between lines") << 3 << false;
    }
    void anEdgeMayBeBrokenByARowOrTwo()
    {
        QFETCH(int, rows);
        QFETCH(bool, isLeftOut);
        QImage picture = plain({20, 100});
        fill(picture, {4, 3, 3, 40}, kBlack);
        fill(picture, {4, 43 + rows, 3, 40}, kBlack);
        const ColourSteps steps(picture);
        QCOMPARE(steps.at(3, 20), !isLeftOut);
        QCOMPARE(steps.at(6, 70), !isLeftOut);
    }

    void aCountLeavesOutItsEnd()
    {
        QImage picture = plain({10, 1});
        picture.setPixel(2, 0, kBlack);
        picture.setPixel(6, 0, kBlack);
        const ColourSteps steps(picture); // at 1, 2, 5 and 6
        QCOMPARE(steps.count(0, 0, 10), 4);
        QCOMPARE(steps.count(0, 2, 5), 1);
        QCOMPARE(steps.count(0, 2, 6), 2);
        QCOMPARE(steps.count(0, 3, 3), 0);
        QCOMPARE(steps.count(0, 6, 1000), 1);
    }

    void theSmallestPicturesHaveNone()
    {
        QCOMPARE(ColourSteps(QImage()).width(), 0);
        QCOMPARE(rowOf(ColourSteps(plain({1, 1}, kBlack)), 0), QStringLiteral("."));
        QImage tall = plain({1, 200});
        fill(tall, {0, 50, 1, 100}, kBlack);
        QCOMPARE(ColourSteps(tall).count(100, 0, 1), 0);
    }

private:
    static QString rowOf(const ColourSteps& steps, int y)
    {
        QString row;
        for (int x = 0; x < steps.width(); ++x)
            row += steps.at(x, y) ? u'#' : u'.';
        return row;
    }
};

} // namespace mossbank

QTEST_APPLESS_MAIN(mossbank::ColourStepsTest)
#include "ColourStepsTest.moc"
