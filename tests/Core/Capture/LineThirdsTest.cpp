// SPDX-License-Identifier: Apache-2.0
//
// Lines whose letters are drawn in thirds of a pixel, a colour each.
#include "tests/Core/Capture/ImagesOfLines.h"

#include <QTest>

#include <cstdlib>

namespace mossbank {

class LineThirdsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void colouredFringesDoNotMakeStrokesThicker_data()
    {
        QTest::addColumn<QRgb>("ink");
        QTest::addColumn<QRgb>("background");
        QTest::newRow("black on white") << kBlack << kWhite;
        QTest::newRow("white on black") << kWhite << kBlack;
        QTest::newRow("faint on dark") << qRgb(50, 52, 50) << qRgb(20, 20, 20);
    }
    void colouredFringesDoNotMakeStrokesThicker()
    {
        QFETCH(QRgb, ink);
        QFETCH(QRgb, background);
        QImage picture = plain(kSize, background);
        const QRect line = write(picture, kPlace, {4, 3}, ink);
        const QImage whole = wholeImages(picture, line, {line}).value(0);
        // The edges of stems lie on thirds of a pixel: the pixel beyond has a third of the ink.
        const QRgb fringe = qRgb(qRed(ink), qGreen(background), qBlue(background));
        QImage fringed = picture;
        for (int y = line.top(); y <= line.bottom(); ++y) {
            for (int x = line.left(); x <= line.right(); ++x) {
                if (picture.pixel(x, y) == ink && picture.pixel(x + 1, y) == background)
                    fringed.setPixel(x + 1, y, fringe);
            }
        }
        const QList<QImage> images = wholeImages(fringed, line, {line});
        QCOMPARE(images.size(), 1);
        QCOMPARE(darkest(images.first()), darkest(whole));
        constexpr int kMargin = 3;
        for (int y = 0; y < line.height(); ++y) {
            for (int x = 0; x < line.width(); ++x) {
                if (fringed.pixel(line.topLeft() + QPoint(x, y)) != fringe)
                    continue;
                const int here = valueAt(images.first(), x + kMargin, y + 2);
                const int third = 255 - (255 - darkest(whole)) / 3;
                QVERIFY2(std::abs(here - third) <= 4, qPrintable(QString::number(here)));
            }
        }
    }

    void lettersDrawnInThirdsHaveAColumnForEach_data()
    {
        QTest::addColumn<QRgb>("ink");
        QTest::addColumn<QRgb>("background");
        QTest::addColumn<bool>("isRedLeft");
        QTest::newRow("black on white") << kBlack << kWhite << true;
        QTest::newRow("blue is left") << kBlack << kWhite << false;
        QTest::newRow("light on blue") << qRgb(230, 240, 250) << qRgb(30, 60, 160) << true;
        QTest::newRow("red on dark") << qRgb(220, 120, 110) << qRgb(25, 25, 30) << true;
    }
    void lettersDrawnInThirdsHaveAColumnForEach()
    {
        QFETCH(QRgb, ink);
        QFETCH(QRgb, background);
        QFETCH(bool, isRedLeft);
        // Letters three times as wide as they will be, of which each pixel takes three columns.
        QImage wide = plain({3 * kSize.width(), kSize.height()}, kWhite);
        write(wide, {3 * kPlace.x() + 1, kPlace.y()}, {6, 4, 5}, kBlack, 24);
        QImage picture = plain(kSize, background);
        const auto mixed = [&](int x, int y, int third, int (*channel)(QRgb)) {
            const int column = 3 * x + (isRedLeft ? third : 2 - third);
            return wide.pixel(column, y) == kBlack ? channel(ink) : channel(background);
        };
        QRect line;
        for (int y = 0; y < kSize.height(); ++y) {
            for (int x = 0; x < kSize.width(); ++x) {
                picture.setPixel(
                    x, y,
                    qRgb(mixed(x, y, 0, qRed), mixed(x, y, 1, qGreen), mixed(x, y, 2, qBlue)));
                if (picture.pixel(x, y) != background)
                    line |= QRect(x, y, 1, 1);
            }
        }
        const QList<LineImage> images = imagesOfLine(picture, line, {line});
        QCOMPARE(images.size(), 1);
        QCOMPARE(images.first().thirds.width(), 3 * images.first().whole.width());
        constexpr QPoint kMargin = {3, 2};
        const QPoint from = line.topLeft() - kMargin;
        QCOMPARE(images.first().thirds,
                 wide.copy(3 * from.x(), from.y(), images.first().thirds.width(),
                           images.first().thirds.height())
                     .convertToFormat(QImage::Format_Grayscale8));
    }

    void lettersDrawnInWholePixelsHaveNoThirds_data()
    {
        QTest::addColumn<QRgb>("ink");
        QTest::addColumn<QRgb>("second");
        QTest::addColumn<QRgb>("background");
        QTest::newRow("black on white") << kBlack << kBlack << kWhite;
        QTest::newRow("red and blue on white") << qRgb(200, 0, 0) << qRgb(0, 0, 200) << kWhite;
        QTest::newRow("orange on blue") << qRgb(250, 150, 30) << kWhite << qRgb(20, 40, 120);
    }
    void lettersDrawnInWholePixelsHaveNoThirds()
    {
        QFETCH(QRgb, ink);
        QFETCH(QRgb, second);
        QFETCH(QRgb, background);
        QImage picture = plain(kSize, background);
        const QRect left = write(picture, kPlace, {4, 3}, ink);
        const QRect line = left | write(picture, {left.right() + 5, kPlace.y()}, {5}, second);
        const QList<LineImage> images = imagesOfLine(picture, line, {line});
        QCOMPARE(images.size(), 1);
        QVERIFY(images.first().thirds.isNull());
    }
};

} // namespace mossbank

QTEST_APPLESS_MAIN(mossbank::LineThirdsTest)
#include "LineThirdsTest.moc"
