// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Tray/TraySymbols.h"

#include <QColor>
#include <QPainter>
#include <QTest>

#include <functional>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

using Kind = std::function<bool(const QColor&)>;

bool isRed(const QColor& colour)
{
    return colour.red() > 180 && colour.green() < 100 && colour.blue() < 100;
}
bool isAmber(const QColor& colour)
{
    return colour.red() > 180 && colour.green() > 120 && colour.blue() < 110;
}
bool isGreen(const QColor& colour)
{
    return colour.green() > colour.red() + 20 && colour.green() > colour.blue() + 10;
}

/// Of a hundred.
int share(const QImage& image, const Kind& kind)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            count += colour.alpha() > 200 && kind(colour) ? 1 : 0;
        }
    }
    return count * 100 / (image.width() * image.height());
}

QImage onPanel(const QImage& image, const QColor& panel)
{
    QImage all(image.size(), QImage::Format_RGB32);
    all.fill(panel);
    QPainter(&all).drawImage(0, 0, image);
    return all;
}

/// As standards for legibility have it: 1 for the same, 21 for black on white.
double contrast(const QColor& one, const QColor& other)
{
    const auto light = [](const QColor& colour) {
        const auto part = [](double value) {
            return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) +
               0.0722 * part(colour.blueF());
    };
    const double first = light(one) + 0.05;
    const double second = light(other) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

} // namespace

class TraySymbolsTest final : public QObject {
    Q_OBJECT

    static void everySize()
    {
        QTest::addColumn<int>("size");
        for (const int size : TraySymbols::sizes())
            QTest::addRow("%d", size) << size;
    }

private Q_SLOTS:
    void aSecretGoesBeforeTheRecording()
    {
        QVERIFY(TraySymbols::symbol(false, false) == TraySymbol::Resting);
        QVERIFY(TraySymbols::symbol(true, false) == TraySymbol::Recording);
        QVERIFY(TraySymbols::symbol(true, true) == TraySymbol::SecureInput);
    }

    void eachStateIsToldByItsSign_data() { everySize(); }
    void eachStateIsToldByItsSign()
    {
        QFETCH(int, size);
        const QImage rests = TraySymbols::image(TraySymbol::Resting, size);
        const QImage records = TraySymbols::image(TraySymbol::Recording, size);
        const QImage secret = TraySymbols::image(TraySymbol::SecureInput, size);
        for (const QImage& image : {rests, records, secret}) {
            QCOMPARE(image.size(), QSize(size, size));
            QVERIFY2(share(image, isGreen) >= 30, "the tile is there");
            QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
        }
        QCOMPARE(share(rests, isRed) + share(rests, isAmber), 0);
        QVERIFY(share(records, isRed) >= 8);
        QCOMPARE(share(records, isAmber), 0);
        QVERIFY(share(secret, isAmber) >= 8);
        QCOMPARE(share(secret, isRed), 0);
    }

    void theTileHasThreeBars_data() { everySize(); }
    void theTileHasThreeBars()
    {
        QFETCH(int, size);
        const QImage image = TraySymbols::image(TraySymbol::Resting, size);
        // Down the middle, where they are much lighter than what is between them.
        int bars = 0;
        bool wasLight = false;
        for (int y = 0; y < size; ++y) {
            const QColor colour = image.pixelColor(size / 2, y);
            const bool isLight = colour.alpha() > 200 && colour.lightnessF() > 0.6F;
            bars += isLight && !wasLight ? 1 : 0;
            wasLight = isLight;
        }
        QCOMPARE(bars, 3);
    }

    void itStandsOutFromAnyPanel_data()
    {
        QTest::addColumn<QColor>("panel");
        QTest::newRow("light") << QColor(0xf6, 0xf5, 0xf4);
        QTest::newRow("dark") << QColor(0x1d, 0x1d, 0x20);
        QTest::newRow("black") << QColor(Qt::black);
        QTest::newRow("white") << QColor(Qt::white);
    }
    void itStandsOutFromAnyPanel()
    {
        QFETCH(QColor, panel);
        constexpr double kGraphics = 3;
        constexpr int kSize = 22;
        for (const TraySymbol symbol :
             {TraySymbol::Resting, TraySymbol::Recording, TraySymbol::SecureInput}) {
            const QImage image = onPanel(TraySymbols::image(symbol, kSize), panel);
            const int distinct = share(
                image, [&](const QColor& colour) { return contrast(colour, panel) >= kGraphics; });
            QVERIFY2(distinct >= 30, qPrintable(QString::number(distinct)));
        }
    }

    void theSignHasARimAroundIt()
    {
        constexpr int kSize = 64;
        const QImage rests = TraySymbols::image(TraySymbol::Resting, kSize);
        for (const TraySymbol symbol : {TraySymbol::Recording, TraySymbol::SecureInput}) {
            const QImage image = TraySymbols::image(symbol, kSize);
            int cutOut = 0;
            for (int y = 0; y < kSize; ++y) {
                for (int x = 0; x < kSize; ++x)
                    cutOut +=
                        rests.pixelColor(x, y).alpha() == 255 && image.pixelColor(x, y).alpha() == 0
                            ? 1
                            : 0;
            }
            QVERIFY2(cutOut > kSize, qPrintable(QString::number(cutOut)));
        }
    }

    void anIconHasAllSizes()
    {
        QList<int> widths;
        for (const QSize& size : TraySymbols::icon(TraySymbol::Recording).availableSizes())
            widths.append(size.width());
        std::ranges::sort(widths);
        QCOMPARE(widths, TraySymbols::sizes());
    }
};

QTEST_MAIN(TraySymbolsTest)
#include "TraySymbolsTest.moc"
