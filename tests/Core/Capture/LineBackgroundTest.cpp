// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/LineBackground.h"

#include "MossbankCore/Capture/ColourSteps.h"
#include "tests/Core/Capture/DrawnText.h"

#include <QTest>

#include <array>
#include <utility>

namespace mossbank {

using namespace Qt::StringLiterals;

namespace {

/// Colours and widths of stripes in which no letter of a line 20 high has room.
constexpr std::array<std::pair<QRgb, int>, 3> kNarrow = {
    {{qRgb(200, 40, 40), 13}, {qRgb(40, 40, 200), 10}, {qRgb(40, 160, 40), 13}}};

/// Fills these stripes from a column on, and tells where they end.
int fillNarrow(QImage& picture, int x)
{
    for (const auto& [colour, width] : kNarrow) {
        fill(picture, {x, 0, width, picture.height()}, colour);
        x += width;
    }
    return x;
}

/// An eight, 20 high, of which more is ink than not. Tells where it ends.
int writeBoldEight(QImage& picture, const QPoint& at, QRgb ink)
{
    const QRgb background = picture.pixel(at);
    const QRect figure(at, QSize(14, 20));
    fill(picture, figure.adjusted(2, 0, -2, 0), ink);
    fill(picture, figure.adjusted(0, 2, 0, -2), ink);
    fill(picture, {at.x() + 5, at.y() + 4, 4, 4}, background);
    fill(picture, {at.x() + 5, at.y() + 12, 4, 4}, background);
    return figure.right() + 1;
}

} // namespace

class LineBackgroundTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aLineOnOnePanelIsOnePart_data()
    {
        QTest::addColumn<QRgb>("ink");
        QTest::addColumn<QRgb>("background");
        QTest::newRow("black on white") << kBlack << kWhite;
        QTest::newRow("white on black") << kWhite << kBlack;
        QTest::newRow("grey on grey") << qRgb(140, 140, 140) << qRgb(90, 90, 90);
        QTest::newRow("yellow on blue") << qRgb(255, 230, 0) << qRgb(0, 30, 160);
    }
    void aLineOnOnePanelIsOnePart()
    {
        QFETCH(QRgb, ink);
        QFETCH(QRgb, background);
        QImage picture = plain({400, 40}, background);
        const QRect line = write(picture, {10, 14}, {4, 6, 3, 8}, ink);
        const QList<LinePart> expected = {{line, background}};
        QCOMPARE(partsOf(picture, line), expected);
    }

    void aRowIsItsBackgroundThoughTheLineReachesBeyondIt()
    {
        constexpr QRgb kChosen = qRgb(203, 226, 241);
        QImage picture = plain({600, 60});
        fill(picture, {30, 20, 570, 16}, kChosen);
        write(picture, {34, 22}, {4, 6, 5, 8, 6}, kBlack, 11);
        // An edge of the list above the row is taken for part of the line.
        const QList<LinePart> parts = partsOf(picture, {5, 15, 400, 24});
        QCOMPARE(parts.last().background, kChosen);
        QCOMPARE(parts.last().area.right(), 404);
        QVERIFY(std::abs(parts.last().area.left() - 30) <= 4);
    }

    void aBadgeInALineIsAPartOfItsOwn()
    {
        constexpr QRgb kRed = qRgb(200, 40, 40);
        QImage picture = plain({500, 40});
        const QRect before = write(picture, {10, 14}, {5, 6});
        const QRect badge(before.right() + 8, 10, 80, 20);
        fill(picture, badge, kRed);
        write(picture, {badge.left() + 10, 14}, {5}, kWhite);
        const QRect after = write(picture, {badge.right() + 8, 14}, {6, 5});
        const QList<LinePart> parts =
            partsOf(picture, {10, 14, after.left() + after.width() - 10, 12});
        QCOMPARE(parts.size(), 3);
        QCOMPARE(parts.at(0).background, kWhite);
        QCOMPARE(parts.at(1).background, kRed);
        QCOMPARE(parts.at(2).background, kWhite);
        // The borders lie within a letter's width of the badge's.
        QVERIFY(std::abs(parts.at(1).area.left() - badge.left()) <= 8);
        QVERIFY(std::abs(parts.at(2).area.left() - badge.right()) <= 8);
        // Together they are the line.
        QCOMPARE(parts.at(0).area.left(), 10);
        QCOMPARE(parts.at(1).area.left(), parts.at(0).area.right() + 1);
        QCOMPARE(parts.at(2).area.left(), parts.at(1).area.right() + 1);
        QCOMPARE(parts.at(2).area.right(), after.right());
    }

    void whatIsTooNarrowForALetterIsNoPart()
    {
        QImage picture = plain({300, 40});
        const QRect line = write(picture, {10, 14}, {5, 6});
        fill(picture, {line.right() - 7, 10, 8, 20}, qRgb(200, 40, 40));
        QCOMPARE(partsOf(picture, line).size(), 1);
        QCOMPARE(partsOf(picture, line).first().area, line);
    }

    void narrowPartsBeforeTheFirstAreOfIt()
    {
        // Each too narrow for a letter, and of all that is looked at first red is the most.
        QImage picture = plain({300, 60});
        fillNarrow(picture, 20);
        const QRect line(20, 20, 240, 20);
        const QList<LinePart> expected = {{line, kWhite}};
        QCOMPARE(partsOf(picture, line), expected);
    }

    void whereAllPartsAreNarrowTheyAreOne()
    {
        QImage picture = plain({300, 60});
        const int end = fillNarrow(picture, 20);
        const QRect line(20, 20, end - 20, 20);
        const QList<LinePart> expected = {{line, kNarrow.front().first}};
        QCOMPARE(partsOf(picture, line), expected);
    }

    void aGradientIsOneBackgroundThatChanges()
    {
        QImage picture = plain({400, 40});
        const auto colourAt = [](int x) {
            return qRgb(40 + x / 4, 90, 200 - x / 4);
        };
        for (int x = 0; x < 400; ++x)
            fill(picture, {x, 0, 1, 40}, colourAt(x));
        const QRect line = write(picture, {10, 14}, {9, 9, 9}, kWhite);
        const std::vector<QRgb> backgrounds = backgroundsOf(
            picture, {.area = line, .background = colourAt(20)}, line.left(), line.right() + 1);
        QCOMPARE(backgrounds.size(), static_cast<std::size_t>(line.width()));
        for (int x = line.left(); x <= line.right(); ++x) {
            const QRgb background = backgrounds[static_cast<std::size_t>(x - line.left())];
            QVERIFY2(distance(background, colourAt(x)) <= 20,
                     qPrintable(u"%1 at %2"_s.arg(distance(background, colourAt(x))).arg(x)));
        }
        QVERIFY(distance(backgrounds.front(), backgrounds.back()) > 40);
    }

    void boldLettersAreNotTakenForABackground()
    {
        QImage picture = plain({300, 40});
        const QRect line(10, 14, 120, 12);
        // Three quarters of each letter are ink.
        for (int letter = 0; letter < 10; ++letter)
            fill(picture, {10 + letter * 12, 14, 8, 12}, kBlack);
        QCOMPARE(backgroundsOf(picture, {.area = line, .background = kWhite}, 10, 130),
                 std::vector<QRgb>(120, kWhite));
    }

    void boldFiguresAreNotParted_data()
    {
        QTest::addColumn<QRgb>("ink");
        QTest::addColumn<QRgb>("background");
        QTest::addColumn<int>("thin");
        QTest::newRow("alone") << kBlack << kWhite << 0;
        QTest::newRow("alone, light on dark") << kWhite << qRgb(30, 30, 34) << 0;
        QTest::newRow("after thin letters") << kBlack << kWhite << 4;
    }
    void boldFiguresAreNotParted()
    {
        QFETCH(QRgb, ink);
        QFETCH(QRgb, background);
        QFETCH(int, thin);
        QImage picture = plain({300, 60}, background);
        const int left = 20;
        int x = left;
        if (thin > 0)
            x = write(picture, {x, 20}, {thin}, ink, 20).right() + 6;
        for (int figure = 0; figure < 3; ++figure)
            x = writeBoldEight(picture, {x, 20}, ink) + 2;
        const QRect line(left, 20, x - 2 - left, 20);
        const QList<LinePart> expected = {{line, background}};
        QCOMPARE(partsOf(picture, line), expected);
    }

    void aBadgeAsHighAsTheLineIsAPart_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QRect>("letters"); // within the badge
        QTest::newRow("with one figure") << QSize(15, 16) << QRect(6, 4, 4, 8);
        QTest::newRow("with a word from its top to its end")
            << QSize(70, 16) << QRect(8, 3, 54, 13);
    }
    void aBadgeAsHighAsTheLineIsAPart()
    {
        QFETCH(QSize, size);
        QFETCH(QRect, letters);
        constexpr QRgb kBlue = qRgb(60, 76, 168);
        QImage picture = plain({400, 60});
        const QRect word = write(picture, {20, 22}, {5, 4});
        const QRect badge({word.right() + 14, 20}, size);
        fill(picture, badge, kBlue);
        // Round, as badges are.
        for (const int x : {badge.left(), badge.right()}) {
            fill(picture, {x, badge.top(), 1, 4}, kWhite);
            fill(picture, {x, badge.bottom() - 3, 1, 4}, kWhite);
        }
        for (int x = letters.left(); x < letters.right(); x += 5)
            fill(picture, {badge.left() + x, badge.top() + letters.top(), 3, letters.height()},
                 kWhite);
        const QList<LinePart> parts =
            partsOf(picture, {20, 20, badge.right() + 1 - 20, badge.height()});
        QCOMPARE(parts.size(), 2);
        QCOMPARE(parts.last().background, kBlue);
    }

    void theLastStemOnABadgeIsOnIt()
    {
        // Of the colour of what is around the badge, and as high as it.
        constexpr QRgb kGreen = qRgb(44, 182, 107);
        QImage picture = plain({400, 40});
        const QRect badge(20, 10, 80, 16);
        fill(picture, badge, kGreen);
        const QRect letters = write(picture, {30, 12}, {5}, kWhite);
        const QRect stem(letters.right() + 4, 10, 2, 16);
        fill(picture, stem, kWhite);
        QVERIFY(badge.contains(stem));
        const QRect after = write(picture, {badge.right() + 12, 12}, {5});
        const QList<LinePart> parts =
            partsOf(picture, {20, 10, after.right() + 1 - 20, badge.height()});
        QCOMPARE(parts.size(), 2);
        QCOMPARE(parts.first().area.right(), badge.right());
    }

    void theSmallestAreasHaveOnePart()
    {
        const QImage picture = plain({10, 10}, kBlack);
        const QList<LinePart> pixel = {{QRect(3, 3, 1, 1), kBlack}};
        QCOMPARE(partsOf(picture, pixel.first().area), pixel);
        const QList<LinePart> column = {{QRect(3, 0, 1, 10), kBlack}};
        QCOMPARE(partsOf(picture, column.first().area), column);
        QCOMPARE(backgroundsOf(picture, pixel.first(), 3, 4), std::vector<QRgb>{kBlack});
    }
};

} // namespace mossbank

QTEST_APPLESS_MAIN(mossbank::LineBackgroundTest)
#include "LineBackgroundTest.moc"
