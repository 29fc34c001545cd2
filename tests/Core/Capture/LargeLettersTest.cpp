// SPDX-License-Identifier: Apache-2.0
//
// Where the lines are of letters that are as large as several lines of text.
#include "tests/Core/Capture/DrawnText.h"
#include "tests/Core/Capture/FoundLines.h"

#include <QTest>

namespace mossbank {

class LargeLettersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatLiesWithinALargeLetterIsOfItsLine()
    {
        QImage picture = plain({200, 120});
        for (int y = 0; y < 60; ++y) {
            fill(picture, {90 - y * 9 / 10, 20 + y, 6, 1}, kBlack);
            fill(picture, {96 + y * 9 / 10, 20 + y, 6, 1}, kBlack);
        }
        fill(picture, {86, 56, 20, 22}, kBlack);
        QCOMPARE(found(picture).size(), 1);
    }

    void theDotOfALargeLetterIsNoLine_data()
    {
        QTest::addColumn<int>("top");
        QTest::newRow("over it") << 44;
        QTest::newRow("reaching below the line") << 106;
    }

    void theDotOfALargeLetterIsNoLine()
    {
        QFETCH(int, top);
        QImage picture = plain({600, 160});
        const QRect letters = write(picture, {60, 40}, {3, 2}, kBlack, 72);
        const QRect dot(254, top, 12, 12); // between the two words
        fill(picture, dot, kBlack);
        QCOMPARE(found(picture).size(), 1);
        QVERIFY(isAround(found(picture).first(), letters | dot));
    }

    void aLargeLetterIsNotPartedBetweenItsBows()
    {
        // An S of straight strokes, each of which smoothing makes many steps of.
        QImage picture = plain({400, 120});
        for (const int x : {30, 90, 150}) {
            for (const int top : {30, 54, 78}) {
                for (int column = 0; column < 44; column += 2)
                    fill(picture, {x + column, top, 1, 8}, kBlack);
            }
            fill(picture, {x, 38, 8, 16}, kBlack);
            fill(picture, {x + 36, 62, 8, 16}, kBlack);
        }
        QCOMPARE(found(picture).size(), 1);
        QVERIFY(isAround(found(picture).first(), QRect(30, 30, 164, 56)));
    }

    void aLargeLineIsNotPartedWithinItsLetters()
    {
        // Above half of its height there are a few stems, as of an l or a b, below many.
        QImage picture = plain({500, 80});
        const QRect letters = write(picture, {20, 30}, {9}, kBlack, 24);
        fill(picture, {20, 14, 4, 16}, kBlack);
        fill(picture, {36, 14, 4, 16}, kBlack);
        QCOMPARE(found(picture).size(), 1);
        QVERIFY(isAround(found(picture).first(), letters.adjusted(0, -16, 0, 0)));
    }

    void twoFiguresAreNotPartedWhereLittleOfThemIs()
    {
        // As of a 2 and a sign of per cent: a stroke of the one and one of the other in the middle.
        QImage picture = plain({200, 80});
        for (const int top : {20, 31})
            for (const int x : {20, 29, 36, 42, 49, 55})
                fill(picture, {x, top, 3, 10}, kBlack);
        fill(picture, {24, 30, 3, 1}, kBlack);
        fill(picture, {45, 30, 3, 1}, kBlack);
        QCOMPARE(found(picture).size(), 1);
        QVERIFY(isAround(found(picture).first(), QRect(20, 20, 38, 21)));
    }
};

} // namespace mossbank

QTEST_APPLESS_MAIN(mossbank::LargeLettersTest)
#include "LargeLettersTest.moc"
