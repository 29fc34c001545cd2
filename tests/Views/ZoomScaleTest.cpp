// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Workspace/ZoomScale.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace mossbank;

class ZoomScaleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void thePictureFits_data()
    {
        QTest::addColumn<QSizeF>("picture");
        QTest::addColumn<QSizeF>("viewport");
        QTest::addColumn<double>("scale");
        QTest::newRow("too wide") << QSizeF(2000, 500) << QSizeF(1000, 1000) << 0.5;
        QTest::newRow("too high") << QSizeF(500, 4000) << QSizeF(1000, 1000) << 0.25;
        QTest::newRow("as large") << QSizeF(800, 600) << QSizeF(800, 600) << 1.0;
        QTest::newRow("never larger than it is") << QSizeF(80, 60) << QSizeF(800, 600) << 1.0;
        QTest::newRow("no picture yet") << QSizeF() << QSizeF(800, 600) << 1.0;
        QTest::newRow("no window yet") << QSizeF(800, 600) << QSizeF() << 1.0;
    }
    void thePictureFits()
    {
        QFETCH(QSizeF, picture);
        QFETCH(QSizeF, viewport);
        QFETCH(double, scale);
        ZoomScale zoom;
        show(zoom, picture, viewport);
        QCOMPARE(zoom.scale(), scale);
        QVERIFY(zoom.isFitting());
    }

    void aLargerWindowShowsMoreOfWhatFits()
    {
        ZoomScale zoom;
        show(zoom, {2000, 1000}, {500, 500});
        show(zoom, {2000, 1000}, {1000, 500});
        QCOMPARE(zoom.scale(), 0.5);
        zoom.showOwnSize();
        show(zoom, {2000, 1000}, {100, 50});
        QCOMPARE(zoom.scale(), 1.0);
        zoom.showWhole();
        QCOMPARE(zoom.scale(), 0.05);
    }

    void itIsZoomedFromWhatIsSeen()
    {
        ZoomScale zoom;
        show(zoom, {2000, 1000}, {1000, 500});
        zoom.zoomIn();
        QCOMPARE(zoom.scale(), 0.625);
        QVERIFY(!zoom.isFitting());
        zoom.zoomOut();
        QCOMPARE(zoom.scale(), 0.5);
        QVERIFY(!zoom.isFitting());
        QCOMPARE(zoom.label(), u"50 %"_s);
    }

    void thereAreEndsToIt()
    {
        ZoomScale zoom;
        show(zoom, {800, 600}, {800, 600});
        for (int time = 0; time < 20; ++time)
            zoom.zoomIn();
        QCOMPARE(zoom.scale(), 3.0);
        for (int time = 0; time < 40; ++time)
            zoom.zoomOut();
        QCOMPARE(zoom.scale(), 0.1);
    }

private:
    static void show(ZoomScale& zoom, QSizeF picture, QSizeF viewport)
    {
        zoom.setProperty("picture", picture);
        zoom.setProperty("viewport", viewport);
    }
};

QTEST_GUILESS_MAIN(ZoomScaleTest)
#include "ZoomScaleTest.moc"
