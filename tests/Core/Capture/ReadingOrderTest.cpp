// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/ReadingOrder.h"

#include <QTest>

#include <algorithm>
#include <random>

namespace mossbank {

class ReadingOrderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void linesComeInTheOrderOfReading_data()
    {
        QTest::addColumn<QList<QRect>>("lines");
        QTest::newRow("none") << QList<QRect>();
        QTest::newRow("one") << QList<QRect>{{5, 5, 100, 12}};
        QTest::newRow("from the top") << QList<QRect>{{5, 5, 100, 12}, {5, 25, 80, 12}};
        QTest::newRow("from the top, the second further left")
            << QList<QRect>{{50, 5, 100, 12}, {5, 25, 80, 12}};
        QTest::newRow("columns from the left") << QList<QRect>{
            {5, 20, 100, 12}, {5, 40, 100, 12}, {200, 5, 100, 12}, {200, 25, 9, 12}};
        QTest::newRow("columns of which the left ends early")
            << QList<QRect>{{5, 5, 100, 12}, {200, 5, 100, 12}, {200, 25, 100, 12}};
        QTest::newRow("a title over two columns, a line under them")
            << QList<QRect>{{4, 5, 300, 20},   {5, 45, 100, 12},  {5, 65, 100, 12},
                            {200, 45, 99, 12}, {200, 65, 99, 12}, {4, 105, 300, 12}};
        QTest::newRow("columns within a column") << QList<QRect>{
            {5, 5, 60, 12},     {5, 25, 60, 12},    {100, 5, 300, 20}, {100, 60, 100, 12},
            {100, 80, 100, 12}, {260, 60, 100, 12}, {260, 80, 100, 12}};
        QTest::newRow("side by side, a word's space apart")
            << QList<QRect>{{5, 5, 60, 12}, {70, 5, 60, 12}, {5, 25, 125, 12}};
        QTest::newRow("rows of words, a word's space apart")
            << QList<QRect>{{5, 5, 60, 12}, {70, 5, 60, 12}, {5, 25, 60, 12}, {70, 25, 60, 12}};
        QTest::newRow("side by side, the right one a pixel higher")
            << QList<QRect>{{5, 6, 60, 12}, {70, 5, 60, 12}, {5, 25, 125, 12}};
        QTest::newRow("rows that touch, each rising to the right")
            << QList<QRect>{{5, 9, 60, 12},  {70, 7, 60, 12},  {135, 5, 60, 12},
                            {5, 21, 60, 12}, {70, 19, 60, 12}, {135, 17, 60, 12}};
        QTest::newRow("a low line beside a high one")
            << QList<QRect>{{5, 12, 60, 8}, {70, 5, 60, 24}};
        QTest::newRow("a high line beside two low ones that touch")
            << QList<QRect>{{5, 5, 60, 24}, {70, 6, 60, 11}, {68, 17, 60, 11}};
        QTest::newRow("lines that overlap by half, the lower further left")
            << QList<QRect>{{40, 5, 100, 20}, {5, 15, 100, 20}};
        QTest::newRow("lines that overlap")
            << QList<QRect>{{5, 5, 100, 20}, {40, 15, 100, 20}, {20, 28, 100, 20}};
    }
    void linesComeInTheOrderOfReading()
    {
        QFETCH(QList<QRect>, lines);
        // Whatever order they were found in.
        std::mt19937 random(1);
        QList<QRect> shuffled = lines;
        for (int round = 0; round < 20; ++round) {
            QCOMPARE(inReadingOrder(shuffled), lines);
            std::ranges::shuffle(shuffled, random);
        }
    }

    void noLineIsLostAndNoneComesTwice()
    {
        std::mt19937 random(2);
        const auto upTo = [&](int most) {
            return static_cast<int>(random() % static_cast<unsigned>(most));
        };
        for (int round = 0; round < 50; ++round) {
            QList<QRect> lines;
            for (int line = 0; line < 200; ++line)
                lines.append(QRect(upTo(1900), upTo(1000), 4 + upTo(300), 6 + upTo(40)));
            QList<QRect> found = inReadingOrder(lines);
            const auto byPlace = [](const QRect& one, const QRect& other) {
                return std::tuple(one.x(), one.y(), one.width(), one.height()) <
                       std::tuple(other.x(), other.y(), other.width(), other.height());
            };
            std::ranges::sort(lines, byPlace);
            std::ranges::sort(found, byPlace);
            QCOMPARE(found, lines);
        }
    }

    void aLargeTableEndsInTime()
    {
        // Steps down, so that no row and no column is clear.
        QList<QRect> lines;
        for (int line = 0; line < 5000; ++line)
            lines.append(QRect(line % 70 * 29, line / 70 * 40 + line % 70 * 15, 31, 14));
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(inReadingOrder(lines).size(), lines.size());
        QVERIFY(timer.elapsed() < 2000);
    }
};

} // namespace mossbank

QTEST_APPLESS_MAIN(mossbank::ReadingOrderTest)
#include "ReadingOrderTest.moc"
