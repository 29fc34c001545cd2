// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/ScreenFingerprint.h"

#include "tests/Core/RandomRounds.h"

#include <QImage>
#include <QRandomGenerator>
#include <QTest>

#include <cstdlib>

namespace mossbank {

namespace {

using Cells = std::optional<Fingerprint>;

QImage flat(QSize size, QRgb colour, QImage::Format format = QImage::Format_RGB32)
{
    QImage image(size, format);
    image.fill(colour);
    return image;
}

void paint(QImage& image, const QRect& part, QRgb colour)
{
    for (int y = part.top(); y <= part.bottom(); ++y)
        for (int x = part.left(); x <= part.right(); ++x)
            image.setPixel(x, y, colour);
}

} // namespace

class ScreenFingerprintTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatCannotBeComparedIsNotComparable_data();
    void whatCannotBeComparedIsNotComparable();
    void aCellMovesWhenItDiffersByMoreThanTheTolerance_data();
    void aCellMovesWhenItDiffersByMoreThanTheTolerance();
    void everyMovedCellIsCounted();
    void cellsAreCountedWhateverTheirNumber_data();
    void cellsAreCountedWhateverTheirNumber();

    void aFingerprintHasSizeTimesSizeCells_data();
    void aFingerprintHasSizeTimesSizeCells();
    void noFingerprintIsMadeOfNothing();
    void cellsAreGrayValuesRowAfterRow();
    void theWholePictureIsSqueezedIntoTheSquare();
    void theSamePictureHasTheSameFingerprint_data();
    void theSamePictureHasTheSameFingerprint();
    void aWordThatAppearsMovesCellsWhereItIs();
};

void ScreenFingerprintTest::whatCannotBeComparedIsNotComparable_data()
{
    QTest::addColumn<Cells>("from");
    QTest::addColumn<Cells>("to");
    QTest::newRow("both absent") << Cells() << Cells();
    QTest::newRow("first absent") << Cells() << Cells({1, 2});
    QTest::newRow("second absent") << Cells({1, 2}) << Cells();
    QTest::newRow("different lengths") << Cells({1, 2}) << Cells({1, 2, 3});
    QTest::newRow("both empty") << Cells(Fingerprint()) << Cells(Fingerprint());
    QTest::newRow("one empty") << Cells(Fingerprint()) << Cells(Fingerprint{1});
}

void ScreenFingerprintTest::whatCannotBeComparedIsNotComparable()
{
    QFETCH(Cells, from);
    QFETCH(Cells, to);
    QVERIFY(!ScreenFingerprint::areComparable(from, to));
    QCOMPARE(ScreenFingerprint::moved(from, to, 2), std::int64_t{9223372036854775807});
    QVERIFY(ScreenFingerprint::changed(from, to, 2));
    QVERIFY(ScreenFingerprint::changed(from, to, 255));
}

void ScreenFingerprintTest::aCellMovesWhenItDiffersByMoreThanTheTolerance_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<int>("tolerance");
    QTest::addColumn<bool>("moves");
    QTest::newRow("the same") << 100 << 100 << 2 << false;
    QTest::newRow("by the tolerance") << 100 << 102 << 2 << false;
    QTest::newRow("by one more") << 100 << 103 << 2 << true;
    QTest::newRow("down by the tolerance") << 102 << 100 << 2 << false;
    QTest::newRow("down by one more") << 103 << 100 << 2 << true;
    QTest::newRow("black to white") << 0 << 255 << 2 << true;
    QTest::newRow("white to black") << 255 << 0 << 2 << true;
    QTest::newRow("no tolerance, the same") << 7 << 7 << 0 << false;
    QTest::newRow("no tolerance, by one") << 7 << 8 << 0 << true;
    QTest::newRow("all tolerance") << 0 << 255 << 255 << false;
    QTest::newRow("nearly all tolerance") << 255 << 0 << 254 << true;
}

void ScreenFingerprintTest::aCellMovesWhenItDiffersByMoreThanTheTolerance()
{
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(int, tolerance);
    QFETCH(bool, moves);
    const Cells before({50, static_cast<std::uint8_t>(from), 50});
    const Cells after({50, static_cast<std::uint8_t>(to), 50});
    const auto bound = static_cast<std::uint8_t>(tolerance);
    QCOMPARE(ScreenFingerprint::moved(before, after, bound), std::int64_t{moves ? 1 : 0});
    QCOMPARE(ScreenFingerprint::changed(before, after, bound), moves);
}

void ScreenFingerprintTest::everyMovedCellIsCounted()
{
    const Fingerprint before(36'864, 10);
    Fingerprint after = before;
    for (std::size_t cell = 0; cell < after.size(); cell += 2)
        after[cell] = 200;
    QCOMPARE(ScreenFingerprint::moved(before, after, 2), std::int64_t{18'432});
    QCOMPARE(ScreenFingerprint::moved(before, Fingerprint(36'864, 200), 2), std::int64_t{36'864});
    QCOMPARE(ScreenFingerprint::moved(before, before, 0), std::int64_t{0});
    Fingerprint last = before;
    last.back() = 13;
    QCOMPARE(ScreenFingerprint::moved(before, last, 2), std::int64_t{1});
}

void ScreenFingerprintTest::cellsAreCountedWhateverTheirNumber_data()
{
    QTest::addColumn<std::size_t>("cells");
    // They are counted in blocks; a rest of a block is counted too.
    for (const std::size_t cells : {1, 2, 127, 128, 129, 255, 256, 300, 36'864, 40'000})
        QTest::addRow("%zu", cells) << cells;
}

void ScreenFingerprintTest::cellsAreCountedWhateverTheirNumber()
{
    QFETCH(std::size_t, cells);
    QCOMPARE(ScreenFingerprint::moved(Fingerprint(cells, 0), Fingerprint(cells, 255), 254),
             static_cast<std::int64_t>(cells));
    QRandomGenerator random(randomSeed());
    Fingerprint before(cells);
    Fingerprint after(cells);
    std::int64_t expected = 0;
    for (std::size_t cell = 0; cell < cells; ++cell) {
        const int from = random.bounded(256);
        const int to = random.bounded(256);
        before[cell] = static_cast<std::uint8_t>(from);
        after[cell] = static_cast<std::uint8_t>(to);
        expected += std::abs(from - to) > 100 ? 1 : 0;
    }
    QCOMPARE(ScreenFingerprint::moved(before, after, 100), expected);
}

void ScreenFingerprintTest::aFingerprintHasSizeTimesSizeCells_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<int>("size");
    QTest::newRow("a screen") << QSize(1920, 1080) << 192;
    QTest::newRow("upright") << QSize(1080, 1920) << 192;
    QTest::newRow("one cell") << QSize(1920, 1080) << 1;
    QTest::newRow("cells not a multiple of four") << QSize(1920, 1080) << 7;
    QTest::newRow("a picture smaller than its cells") << QSize(3, 2) << 192;
    QTest::newRow("one pixel") << QSize(1, 1) << 192;
    QTest::newRow("one line") << QSize(5000, 1) << 16;
}

void ScreenFingerprintTest::aFingerprintHasSizeTimesSizeCells()
{
    QFETCH(QSize, picture);
    QFETCH(int, size);
    const auto made = ScreenFingerprint::make(flat(picture, qRgb(90, 90, 90)), size);
    QVERIFY(made);
    QCOMPARE(made->size(), static_cast<std::size_t>(size * size));
    for (const std::uint8_t cell : *made)
        QCOMPARE(int{cell}, 90);
}

void ScreenFingerprintTest::noFingerprintIsMadeOfNothing()
{
    const QImage picture = flat({16, 9}, 0xFF808080);
    QVERIFY(!ScreenFingerprint::make(picture, 0));
    QVERIFY(!ScreenFingerprint::make(picture, -1));
    QVERIFY(!ScreenFingerprint::make(picture, std::numeric_limits<int>::min()));
    QVERIFY(!ScreenFingerprint::make(QImage(), 192));
    QVERIFY(!ScreenFingerprint::make(QImage(0, 1080, QImage::Format_RGB32), 192));
}

void ScreenFingerprintTest::cellsAreGrayValuesRowAfterRow()
{
    QImage picture = flat({200, 200}, qRgb(0, 0, 0));
    paint(picture, QRect(100, 0, 100, 100), qRgb(255, 255, 255));
    paint(picture, QRect(0, 100, 100, 100), qRgb(120, 120, 120));
    const auto made = ScreenFingerprint::make(picture, 2);
    QCOMPARE(made, Cells({0, 255, 120, 0}));

    // Green is brighter to the eye than red, and red than blue.
    QImage colours = flat({300, 1}, qRgb(0, 255, 0));
    paint(colours, QRect(100, 0, 100, 1), qRgb(255, 0, 0));
    paint(colours, QRect(200, 0, 100, 1), qRgb(0, 0, 255));
    const auto grays = ScreenFingerprint::make(colours, 3);
    QVERIFY(grays && (*grays)[0] > (*grays)[1] && (*grays)[1] > (*grays)[2] && (*grays)[2] > 0);
}

void ScreenFingerprintTest::theWholePictureIsSqueezedIntoTheSquare()
{
    for (const QPoint corner :
         {QPoint(0, 0), QPoint(1910, 0), QPoint(0, 1070), QPoint(1910, 1070)}) {
        QImage picture = flat({1920, 1080}, qRgb(255, 255, 255));
        const auto before = ScreenFingerprint::make(picture, 192);
        paint(picture, QRect(corner, QSize(10, 10)), qRgb(0, 0, 0));
        const auto after = ScreenFingerprint::make(picture, 192);
        const auto index =
            static_cast<std::size_t>((corner.y() ? 191 : 0) * 192 + (corner.x() ? 191 : 0));
        QVERIFY((*after)[index] < 50);
        QVERIFY(ScreenFingerprint::moved(before, after, 2) <= 9);
    }
}

void ScreenFingerprintTest::theSamePictureHasTheSameFingerprint_data()
{
    QTest::addColumn<int>("format");
    QTest::newRow("RGB32") << int(QImage::Format_RGB32);
    QTest::newRow("ARGB32") << int(QImage::Format_ARGB32);
    QTest::newRow("ARGB32, premultiplied") << int(QImage::Format_ARGB32_Premultiplied);
    QTest::newRow("RGB888") << int(QImage::Format_RGB888);
    QTest::newRow("BGR888") << int(QImage::Format_BGR888);
    QTest::newRow("RGBX8888") << int(QImage::Format_RGBX8888);
}

void ScreenFingerprintTest::theSamePictureHasTheSameFingerprint()
{
    QFETCH(int, format);
    QImage picture = flat({640, 480}, qRgb(250, 240, 230));
    for (int stripe = 0; stripe < 40; ++stripe)
        paint(picture, QRect(stripe * 16, stripe * 7, 9, 90), qRgb(stripe * 6, 99, 255 - stripe));
    const auto expected = ScreenFingerprint::make(picture, 192);
    const QImage other = picture.convertToFormat(static_cast<QImage::Format>(format));
    QCOMPARE(ScreenFingerprint::moved(expected, ScreenFingerprint::make(other, 192), 1),
             std::int64_t{0});

    // The fourth byte of what an X server gives is anything.
    QImage unset = picture;
    for (int y = 0; y < unset.height(); ++y) {
        auto* const line = reinterpret_cast<QRgb*>(unset.scanLine(y));
        for (int x = 0; x < unset.width(); ++x)
            line[x] &= 0x00FFFFFFU | (static_cast<QRgb>(x * y) << 24U);
    }
    QCOMPARE(ScreenFingerprint::make(unset, 192), expected);
}

void ScreenFingerprintTest::aWordThatAppearsMovesCellsWhereItIs()
{
    const QImage before = flat({1920, 1080}, qRgb(255, 255, 255));
    QImage after = before;
    for (int letter = 0; letter < 5; ++letter)
        paint(after, QRect(800 + letter * 8, 500, 1, 11), qRgb(60, 60, 60));
    const auto moved = ScreenFingerprint::moved(ScreenFingerprint::make(before, 192),
                                                ScreenFingerprint::make(after, 192), 2);
    QVERIFY2(moved >= 5 && moved <= 40, qPrintable(QString::number(moved)));
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::ScreenFingerprintTest)
#include "ScreenFingerprintTest.moc"
