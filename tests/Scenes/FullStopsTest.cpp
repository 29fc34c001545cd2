// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/FullStops.h"

#include "tests/Scenes/DrawnLine.h"
#include "tests/Scenes/SceneFonts.h"

#include <QTest>

namespace mossbank::test {

using namespace Qt::StringLiterals;

class FullStopsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY2(missingFonts().isEmpty(), qPrintable(missingFonts())); }

    void aStopBetweenLettersIsSeen_data() { addFonts(); }
    void aStopBetweenLettersIsSeen()
    {
        QFETCH(QFont, font);
        int seen = 0;
        int all = 0;
        for (const QString& text : {u"spiral.mp3"_s, u"chapter.txt"_s, u"kennel.odt"_s}) {
            for (const double shift : {0.0, 0.25, 0.5, 0.75}) {
                const QList<FullStop> stops = fullStopsOf(drawnLine(font, text, shift));
                ++all;
                seen += stops.size() == 1 && isStopOf(font, text, shift, stops.first());
            }
        }
        QVERIFY2(seen >= all * kLeastSeen, qPrintable(u"%1 of %2"_s.arg(seen).arg(all)));
    }

    void lettersAndSignsHaveNone_data() { addFonts(); }
    void lettersAndSignsHaveNone()
    {
        QFETCH(QFont, font);
        for (const QString& text :
             {u"Ticket loyal octopus wave_kept"_s, u"AKRLXVWYZ hmnkxvwyzt jfrl"_s,
              u"0123456789 (2) [7] {4} &%$#@*"_s, u"\"fact\" it's /home/Lake a-b+c=d"_s}) {
            for (const double shift : {0.0, 0.5}) {
                const auto count = fullStopsOf(drawnLine(font, text, shift)).size();
                QVERIFY2(count == 0, qPrintable(u"%1 in %2"_s.arg(count).arg(text)));
            }
        }
    }

    void anEmptyLineHasNone()
    {
        QImage line(40, 20, QImage::Format_Grayscale8);
        line.fill(255);
        QCOMPARE(fullStopsOf(line), QList<FullStop>());
        QCOMPARE(fullStopsOf(QImage()), QList<FullStop>());
    }

    void roomIsWhiteAndTheRestStays()
    {
        QImage line(5, 1, QImage::Format_Grayscale8);
        for (int x = 0; x < line.width(); ++x)
            line.scanLine(0)[x] = static_cast<uchar>(10 + x);
        const QImage wider = withRoomAround({{1, 2}, {3, 5}}, line);
        QList<int> values;
        for (int x = 0; x < wider.width(); ++x)
            values.append(wider.constScanLine(0)[x]);
        QCOMPARE(values, (QList<int>{10, 255, 11, 255, 12, 255, 13, 14, 255}));
    }

private:
    static constexpr double kLeastSeen = 0.9;

    static void addFonts()
    {
        QTest::addColumn<QFont>("font");
        for (const QString& family : plainFamilies()) {
            for (const int pixels : {11, 12, 13, 14, 15, 17, 20, 28})
                QTest::addRow("%s %d", qPrintable(family), pixels) << sceneFont(family, pixels);
        }
    }

    /// Whether it is where the text has its stop.
    static bool isStopOf(const QFont& font, const QString& text, double shift, const FullStop& stop)
    {
        const QFontMetricsF metrics(font);
        const double before = metrics.horizontalAdvance(text.section(u'.', 0, 0));
        const double from = kLineStart + shift + before;
        const double to = from + metrics.horizontalAdvance(u'.');
        return stop.from >= from - 1.5 && stop.to <= to + 1.5;
    }
};

} // namespace mossbank::test

QTEST_MAIN(mossbank::test::FullStopsTest)
#include "FullStopsTest.moc"
