// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/MarkedZeros.h"

#include "tests/Scenes/DrawnLine.h"
#include "tests/Scenes/SceneFonts.h"

#include <QTest>

namespace mossbank::test {

using namespace Qt::StringLiterals;

class MarkedZerosTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY2(missingFonts().isEmpty(), qPrintable(missingFonts())); }

    void zerosLoseTheirMarks_data() { addFonts(); }
    void zerosLoseTheirMarks()
    {
        QFETCH(QFont, font);
        constexpr double kNearlyAll = 0.9;
        const QString text = u"1024 08:30:50 2010-07-06 x0 9000 40.7"_s;
        int marked = 0;
        int plain = 0;
        for (const double shift : {0.0, 0.25, 0.5, 0.75}) {
            const QImage line = drawnLine(font, text, shift);
            const QImage without = withPlainZeros(line, fixedPitchOf(line));
            QCOMPARE(without.size(), line.size());
            for (qsizetype place = 0; place < text.size(); ++place) {
                if (text.at(place) != u'0')
                    continue;
                marked += darkestAmid(line, font, place, shift) > kDark;
                plain += darkestAmid(without, font, place, shift) > kDark;
            }
        }
        // Were there no marks, this would test nothing.
        QVERIFY2(marked > 0, qPrintable(QString::number(marked)));
        QVERIFY2(plain <= marked * (1 - kNearlyAll),
                 qPrintable(u"%1 of %2 still have one"_s.arg(plain).arg(marked)));
    }

    void whatIsNoZeroStaysAsItIs_data() { addFonts(); }
    void whatIsNoZeroStaysAsItIs()
    {
        QFETCH(QFont, font);
        for (const QString& text :
             {u"886689 B8D6GC9@&%$#8e36S5a"_s, u"aegqbdpocsu RPAHMWNmw 8%88"_s,
              u"Lamp[17] = {8, 69, 3.86e9}"_s}) {
            const QImage line = drawnLine(font, text);
            QVERIFY2(withPlainZeros(line, fixedPitchOf(line)) == line, qPrintable(text));
        }
    }

    void lettersOfDifferentWidthsStayAsTheyAre()
    {
        const QImage line =
            drawnLine(sceneFont(u"DejaVu Sans"_s, 15), u"The Greek letters Θ and θ, and 0 of 8"_s);
        QCOMPARE(withPlainZeros(line, fixedPitchOf(line)), line);
    }

private:
    static constexpr int kDark = 90;
    static constexpr int kLeastBold = 14;

    static void addFonts()
    {
        QTest::addColumn<QFont>("font");
        for (const QString& family : codeFamilies()) {
            for (const int pixels : {11, 12, 13, 14, 15, 17, 20}) {
                for (const bool isBold : {false, true}) {
                    // In small bold type there is hardly anything between a mark and the sides.
                    if (isBold && pixels < kLeastBold)
                        continue;
                    QFont font = sceneFont(family, pixels);
                    font.setBold(isBold);
                    QTest::addRow("%s %d%s", qPrintable(family), pixels, isBold ? " bold" : "")
                        << font;
                }
            }
        }
    }

    /// How much ink the middle of a letter has.
    static int darkestAmid(const QImage& line, const QFont& font, qsizetype place, double shift)
    {
        const QFontMetricsF metrics(font);
        const double advance = metrics.horizontalAdvance(u'0');
        const double middle =
            kLineStart + shift + advance * (static_cast<double>(place) + 0.5) - 0.5;
        const double row = 1 + metrics.ascent() - metrics.capHeight() / 2 - 0.5;
        int ink = 0;
        for (const double y : {std::floor(row), std::ceil(row)}) {
            for (const double x : {std::floor(middle), std::ceil(middle)})
                ink = std::max(ink, 255 - line.constScanLine(static_cast<int>(y))[int(x)]);
        }
        return ink;
    }
};

} // namespace mossbank::test

QTEST_MAIN(mossbank::test::MarkedZerosTest)
#include "MarkedZerosTest.moc"
