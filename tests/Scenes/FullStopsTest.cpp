// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/FullStops.h"

#include "tests/Core/Capture/DrawnText.h"
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

    void whatIsAStopIsToldByItsShapeAndPlace_data()
    {
        QTest::addColumn<QRect>("mark"); // its place from the end of a letter and from its feet
        QTest::addColumn<QRgb>("ink");
        QTest::addColumn<QList<FullStop>>("stops");
        const auto row = [](const char* name, const QRect& mark, bool isStop, QRgb ink = kBlack) {
            const FullStop stop = {kLetterEnd + mark.left(), kLetterEnd + mark.right() + 1};
            QTest::newRow(name) << mark << ink << (isStop ? QList{stop} : QList<FullStop>());
        };
        row("a stop", {1, -2, 2, 2}, true);
        row("a larger one", {1, -3, 3, 3}, true);
        row("a grey one", {1, -2, 2, 2}, true, qRgb(130, 130, 130));
        row("a speck", {1, -2, 2, 2}, false, qRgb(160, 160, 160));
        row("a bar", {1, -2, 5, 2}, false);
        row("a stem", {1, -5, 2, 5}, false);
        row("raised", {1, -3, 2, 2}, false);
        row("lowered", {1, -1, 2, 2}, false);
        row("a comma", {1, -2, 2, 5}, false);
        row("the foot of a letter", {0, -2, 2, 2}, false);
    }
    void whatIsAStopIsToldByItsShapeAndPlace()
    {
        QFETCH(QRect, mark);
        QFETCH(QRgb, ink);
        QImage picture = plain({kLetterEnd + 40, 24});
        const QRect letters = write(picture, {4, 4}, {3});
        QCOMPARE(letters.right() + 1, kLetterEnd);
        fill(picture, mark.translated(kLetterEnd, letters.bottom() + 1), ink);
        write(picture, {kLetterEnd + mark.right() + 2, 4}, {2});
        QTEST(fullStopsOf(picture.convertToFormat(QImage::Format_Grayscale8)), "stops");
    }

    void whatHasSomethingAboveIsNone()
    {
        QImage picture = plain({60, 24});
        const QRect letters = write(picture, {4, 4}, {3});
        const QRect stop(letters.right() + 2, letters.bottom() - 1, 2, 2);
        fill(picture, stop, kBlack);
        fill(picture, stop.translated(0, -5), kBlack);
        QCOMPARE(fullStopsOf(picture.convertToFormat(QImage::Format_Grayscale8)),
                 QList<FullStop>());
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
    /// Where the third H ends that is drawn from 4 on.
    static constexpr int kLetterEnd = 34;
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
