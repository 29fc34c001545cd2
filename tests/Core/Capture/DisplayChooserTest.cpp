// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/DisplayChooser.h"

#include <QTest>

namespace mossbank {

class DisplayChooserTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theDisplayWithTheLargestPartWins_data();
    void theDisplayWithTheLargestPartWins();
};

void DisplayChooserTest::theDisplayWithTheLargestPartWins_data()
{
    constexpr int kNone = -1;
    const QRect left(0, 0, 1920, 1080);
    const QRect right(1920, 0, 1920, 1080);
    const QRect above(0, -1080, 1920, 1080);
    QTest::addColumn<QRect>("window");
    QTest::addColumn<QList<QRect>>("frames");
    QTest::addColumn<int>("expected");
    const QRect window(100, 100, 400, 300);
    QTest::newRow("no display") << window << QList<QRect>() << kNone;
    QTest::newRow("one display") << window << QList<QRect>{left} << 0;
    QTest::newRow("wholly on the first") << window << QList<QRect>{left, right} << 0;
    QTest::newRow("wholly on the second") << window << QList<QRect>{right, left} << 1;
    QTest::newRow("on none") << QRect(5000, 5000, 100, 100) << QList<QRect>{left, right} << kNone;
    QTest::newRow("beside, edge to edge")
        << QRect(1920, 0, 100, 100) << QList<QRect>{left} << kNone;
    QTest::newRow("by one pixel") << QRect(1919, 1079, 100, 100) << QList<QRect>{left} << 0;
    QTest::newRow("mostly on the second")
        << QRect(1900, 0, 400, 300) << QList<QRect>{left, right} << 1;
    QTest::newRow("half and half: the earlier")
        << QRect(1820, 0, 200, 300) << QList<QRect>{left, right} << 0;
    QTest::newRow("half and half: the earlier, turned")
        << QRect(1820, 0, 200, 300) << QList<QRect>{right, left} << 0;
    QTest::newRow("a pixel more on the later")
        << QRect(1820, 0, 201, 300) << QList<QRect>{left, right} << 1;
    QTest::newRow("mirrored: the earlier") << window << QList<QRect>{left, left} << 0;
    QTest::newRow("below zero") << QRect(10, -500, 100, 400) << QList<QRect>{left, above} << 1;
    QTest::newRow("larger than all")
        << QRect(-5000, -5000, 20'000, 20'000) << QList<QRect>{QRect(0, 0, 800, 600), right} << 1;
    QTest::newRow("equal areas of other shapes: the earlier")
        << QRect(0, 0, 100, 100) << QList<QRect>{QRect(0, 0, 50, 10), QRect(0, 0, 10, 50)} << 0;
    QTest::newRow("a window without size") << QRect() << QList<QRect>{left} << kNone;
    QTest::newRow("a window without height")
        << QRect(10, 10, 100, 0) << QList<QRect>{left} << kNone;
    QTest::newRow("a display without size") << window << QList<QRect>{QRect(), left} << 1;
    QTest::newRow("areas beyond 32 bits")
        << QRect(0, 0, 200'000, 200'000)
        << QList<QRect>{QRect(0, 0, 50'000, 50'000), QRect(0, 0, 100'000, 100'000)} << 1;
}

void DisplayChooserTest::theDisplayWithTheLargestPartWins()
{
    QFETCH(QRect, window);
    QFETCH(QList<QRect>, frames);
    QFETCH(int, expected);
    QCOMPARE(DisplayChooser::best(window, frames).value_or(-1), qsizetype{expected});
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::DisplayChooserTest)
#include "DisplayChooserTest.moc"
