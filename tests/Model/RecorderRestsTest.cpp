// SPDX-License-Identifier: Apache-2.0
//
// The rests of the recording loop, and when the next pass is due.
#include "tests/Model/RecorderRig.h"

using namespace mossbank;
using namespace Qt::StringLiterals;

class RecorderRestsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anIntervalBelowASecondRestsASecond_data()
    {
        QTest::addColumn<double>("interval");
        QTest::addColumn<double>("rest");
        QTest::newRow("half a second") << 0.5 << 1.0;
        QTest::newRow("nothing") << 0.0 << 1.0;
        QTest::newRow("negative") << -5.0 << 1.0;
        QTest::newRow("a second") << 1.0 << 1.0;
        QTest::newRow("a minute and a half") << 90.0 << 90.0;
    }
    void anIntervalBelowASecondRestsASecond()
    {
        QFETCH(double, interval);
        QFETCH(double, rest);
        RecorderRig rig;
        rig.preferences.setInterval(interval);
        rig.start();
        QCOMPARE(rig.clock.untilNextAlarm(), rest);
    }

    void theRestIsCountedFromTheEndOfAPass()
    {
        RecorderRig rig;
        rig.screen.holdsPicture = true;
        rig.recorder->toggleRecording();
        QTRY_COMPARE(rig.screen.requests.size(), std::size_t(1));
        rig.clock.advance(10);
        rig.screen.releasePicture();
        rig.settle();
        QCOMPARE(rig.clock.untilNextAlarm(), 30.0);
        QCOMPARE(rig.recorder->nextCaptureAt(), std::optional(rig.clock.now() + 30));
    }

    void aNewIntervalCountsAfterTheRestUnderWay()
    {
        RecorderRig rig;
        rig.start();
        rig.preferences.setInterval(5);
        QCOMPARE(rig.clock.untilNextAlarm(), 30.0);
        rig.clock.advance(30);
        rig.settle();
        QCOMPARE(rig.clock.untilNextAlarm(), 5.0);
        QCOMPARE(rig.screen.contentsAsked, 2);
    }

    void nothingIsDueWhilePaused()
    {
        RecorderRig rig;
        rig.start();
        rig.pauses.isPausedNow = true;
        rig.nextPass();
        QVERIFY(!rig.recorder->nextCaptureAt());
    }
};

QTEST_GUILESS_MAIN(RecorderRestsTest)
#include "RecorderRestsTest.moc"
