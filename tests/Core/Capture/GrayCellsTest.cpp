// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/GrayCells.h"

#include "tests/Core/RandomRounds.h"

#include <QImage>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>

namespace mossbank {

namespace {

QImage noise(QSize size, quint32 seed)
{
    QRandomGenerator random(seed);
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            reinterpret_cast<quint32*>(image.scanLine(y))[x] = random.generate();
    return image;
}

/// The grays of all pixels of a cell, in parts of 32, and their number: the plain way.
struct Sum {
    std::int64_t grays = 0;
    std::int64_t pixels = 0;
};

Sum sumOf(const QImage& image, const QRect& part)
{
    Sum sum;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            sum.grays += 11 * qRed(pixel) + 16 * qGreen(pixel) + 5 * qBlue(pixel);
            ++sum.pixels;
        }
    }
    return sum;
}

/// The pixels of a cell along one side: from the first, so many.
std::pair<int, int> side(int cell, int length, int cells)
{
    const int first = static_cast<int>(qint64{cell} * length / cells);
    const int after = static_cast<int>(qint64{cell + 1} * length / cells);
    return {first, std::max(after - first, 1)};
}

} // namespace

class GrayCellsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aCellIsTheMeanOfItsPixels_data();
    void aCellIsTheMeanOfItsPixels();
    void everyPixelIsInOneCell();
    void theFourthByteCountsForNothing();
    void linesMayBeLongerThanThePicture();
    void thereAreNoneOfNothingNorBeyondAnyScreen();
};

void GrayCellsTest::aCellIsTheMeanOfItsPixels_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<int>("size");
    QTest::newRow("whole cells") << QSize(384, 576) << 192;
    QTest::newRow("a screen, 5 or 6 rows a cell") << QSize(1920, 1080) << 192;
    QTest::newRow("10 or 11 columns a cell") << QSize(2048, 1152) << 192;
    QTest::newRow("upright, 10 rows a cell") << QSize(1080, 1920) << 192;
    QTest::newRow("one cell") << QSize(533, 301) << 1;
    QTest::newRow("two cells") << QSize(33, 17) << 2;
    QTest::newRow("seven cells") << QSize(61, 71) << 7;
    QTest::newRow("8 rows a cell") << QSize(24, 24) << 3;
    QTest::newRow("9 rows a cell") << QSize(27, 27) << 3;
    QTest::newRow("17 rows a cell") << QSize(5, 51) << 3;
    QTest::newRow("smaller than its cells") << QSize(7, 5) << 16;
    QTest::newRow("narrower than its cells") << QSize(3, 100) << 16;
    QTest::newRow("one pixel") << QSize(1, 1) << 4;
    QTest::newRow("one line") << QSize(5000, 1) << 16;
    QTest::newRow("one column") << QSize(1, 5000) << 16;
    QTest::newRow("a pixel a cell") << QSize(192, 192) << 192;
}

void GrayCellsTest::aCellIsTheMeanOfItsPixels()
{
    QFETCH(QSize, picture);
    QFETCH(int, size);
    const QImage image = noise(picture, 7);
    const auto made = grayCells(image, size);
    QVERIFY(made);
    QCOMPARE(made->size(), static_cast<std::size_t>(size * size));
    for (int row = 0; row < size; ++row) {
        for (int column = 0; column < size; ++column) {
            const auto [left, width] = side(column, picture.width(), size);
            const auto [top, height] = side(row, picture.height(), size);
            const Sum sum = sumOf(image, {left, top, width, height});
            const int cell = (*made)[static_cast<std::size_t>(row * size + column)];
            // Rounded to the nearest: either way where it lies in the middle.
            const std::int64_t off = 32 * sum.pixels * cell - sum.grays;
            QVERIFY2(std::abs(off) <= 16 * sum.pixels,
                     qPrintable(QStringLiteral("%1, %2: %3").arg(row).arg(column).arg(cell)));
        }
    }
}

void GrayCellsTest::everyPixelIsInOneCell()
{
    // 5 or 6 rows and 10 or 11 columns are in a cell: one white pixel shows in it and nowhere else.
    QRandomGenerator random(randomSeed());
    for (int time = 0; time < 20; ++time) {
        QImage image(2048, 1080, QImage::Format_RGB32);
        image.fill(Qt::black);
        image.setPixel(random.bounded(2048), random.bounded(1080), qRgb(255, 255, 255));
        const auto made = grayCells(image, 192);
        QVERIFY(made);
        const auto lit = std::ranges::count_if(*made, [](std::uint8_t cell) { return cell > 0; });
        QCOMPARE(lit, 1);
        QVERIFY(*std::ranges::max_element(*made) >= 4); // more than what counts as the same
    }
}

void GrayCellsTest::theFourthByteCountsForNothing()
{
    const QImage image = noise({640, 480}, 11);
    QImage other = image;
    for (int y = 0; y < other.height(); ++y)
        for (int x = 0; x < other.width(); ++x)
            reinterpret_cast<quint32*>(other.scanLine(y))[x] ^= 0xFF000000U;
    QCOMPARE(grayCells(other, 192), grayCells(image, 192));
    // Nor does it spill over where every bit of it is set, in cells as high as they are summed.
    QImage white(8, 64, QImage::Format_ARGB32);
    white.fill(0xFFFFFFFFU);
    QCOMPARE(grayCells(white, 8), std::optional<Fingerprint>(Fingerprint(64, 255)));
}

void GrayCellsTest::linesMayBeLongerThanThePicture()
{
    const QImage image = noise({300, 200}, 5);
    const QRect part(33, 21, 101, 97);
    const QImage window(image.constScanLine(part.y()) + 4 * part.x(), part.width(), part.height(),
                        image.bytesPerLine(), QImage::Format_RGB32);
    QCOMPARE(grayCells(window, 10), grayCells(image.copy(part), 10));
}

void GrayCellsTest::thereAreNoneOfNothingNorBeyondAnyScreen()
{
    QVERIFY(!grayCells(QImage(), 192));
    QVERIFY(!grayCells(QImage(0, 1080, QImage::Format_RGB32), 192));
    QImage longest(65'535, 1, QImage::Format_RGB32);
    longest.fill(0xFFFFFFFFU);
    QCOMPARE(grayCells(longest, 1), std::optional(Fingerprint{255}));
    QImage highest(1, 65'535, QImage::Format_RGB32);
    highest.fill(0xFFFFFFFFU);
    QCOMPARE(grayCells(highest, 1), std::optional(Fingerprint{255}));
    // The sums of as many pixels as are summed at once still fit.
    QImage most(65'535, 8, QImage::Format_RGB32);
    most.fill(0xFFFFFFFFU);
    QCOMPARE(grayCells(most, 1), std::optional(Fingerprint{255}));
    QVERIFY(!grayCells(QImage(65'536, 1, QImage::Format_RGB32), 192));
    QVERIFY(!grayCells(QImage(1, 65'536, QImage::Format_RGB32), 192));
    QVERIFY(!grayCells(highest, 8193));
    QVERIFY(!grayCells(highest, std::numeric_limits<int>::max()));
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::GrayCellsTest)
#include "GrayCellsTest.moc"
