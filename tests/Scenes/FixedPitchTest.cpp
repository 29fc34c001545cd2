// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/FixedPitch.h"

#include "tests/Scenes/DrawnLine.h"
#include "tests/Scenes/SceneFonts.h"

#include <QTest>

namespace mossbank::test {

using namespace Qt::StringLiterals;

class FixedPitchTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY2(missingFonts().isEmpty(), qPrintable(missingFonts())); }

    void lettersOfOneWidthHaveACellEach_data()
    {
        QTest::addColumn<QString>("family");
        QTest::addColumn<int>("pixels");
        for (const QString& family : codeFamilies()) {
            for (const int pixels : {11, 13, 14, 16, 20})
                QTest::addRow("%s %d", qPrintable(family), pixels) << family << pixels;
        }
    }
    void lettersOfOneWidthHaveACellEach()
    {
        QFETCH(QString, family);
        QFETCH(int, pixels);
        const QFont font = sceneFont(family, pixels);
        const double advance = QFontMetricsF(font).horizontalAdvance(u'0');
        for (const QString& text :
             {u"for (int row = 0; row < rows; ++row) sum += at(row, 17);"_s, u"$ grep -n lamp"_s}) {
            const auto pitch = fixedPitchOf(drawnLine(font, text));
            QVERIFY2(pitch.has_value(), qPrintable(text));
            const QString figures = u"%1, not %2; from %3; %4 cells, not %5"_s.arg(pitch->width)
                                        .arg(advance)
                                        .arg(pitch->start)
                                        .arg(pitch->count)
                                        .arg(text.size());
            // The last cell is off by a third of a cell at most.
            const auto length = static_cast<double>(text.size());
            QVERIFY2(std::abs(pitch->width - advance) * length < advance / 3, qPrintable(figures));
            QVERIFY2(std::abs(pitch->start - kLineStart) < advance / 3, qPrintable(figures));
            QCOMPARE(pitch->count, static_cast<int>(text.size()));
        }
    }

    void lettersOfDifferentWidthsHaveNone_data()
    {
        QTest::addColumn<QString>("family");
        for (const QString& family : plainFamilies() + serifFamilies())
            QTest::addRow("%s", qPrintable(family)) << family;
    }
    void lettersOfDifferentWidthsHaveNone()
    {
        QFETCH(QString, family);
        for (const int pixels : {12, 15, 19}) {
            const QFont font = sceneFont(family, pixels);
            for (const QString& text : {u"Nobody had paid the invoice of 1,284.50 by Friday"_s,
                                        u"Windows were lit one after another along the quay"_s})
                QVERIFY2(!fixedPitchOf(drawnLine(font, text)), qPrintable(text));
        }
    }

    void tooFewLettersTellNothing()
    {
        const QFont font = sceneFont(codeFamilies().first(), 14);
        QVERIFY(!fixedPitchOf(drawnLine(font, u"lamp"_s)));
        QVERIFY(!fixedPitchOf(drawnLine(font, u"   "_s)));
        QVERIFY(!fixedPitchOf(QImage()));
    }
};

} // namespace mossbank::test

QTEST_MAIN(mossbank::test::FixedPitchTest)
#include "FixedPitchTest.moc"
