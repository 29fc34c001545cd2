// SPDX-License-Identifier: Apache-2.0
//
// What a handler of the recorder's signals may do.
#include "tests/Model/RecorderRig.h"

#include <utility>

using namespace mossbank;
using namespace Qt::StringLiterals;

class RecorderSignalsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // A handler may start or stop as it likes: whatever it does, the state that is told is the
    // state that is.
    void aHandlerOfTheStopMayStartAgain()
    {
        RecorderRig rig;
        rig.start();
        bool hasStarted = false;
        connect(rig.recorder.get(), &Recorder::isRecordingChanged, this, [&] {
            if (!rig.recorder->isRecording() && !std::exchange(hasStarted, true))
                rig.recorder->toggleRecording();
        });
        rig.recorder->stop();
        QVERIFY(rig.recorder->isRecording());
        QCOMPARE(rig.recorder->status(), u"Waiting for your next screen"_s);
        rig.settle();
        QCOMPARE(rig.screen.contentsAsked, 2);
        QCOMPARE(rig.clock.sleepers(), std::size_t(1));
    }

    void aHandlerOfTheStartMayStop()
    {
        RecorderRig rig;
        connect(rig.recorder.get(), &Recorder::isRecordingChanged, this, [&] {
            if (rig.recorder->isRecording())
                rig.recorder->stop();
        });
        rig.recorder->toggleRecording();
        rig.settle();
        QVERIFY(!rig.recorder->isRecording());
        QCOMPARE(rig.recorder->status(), u"Recording is off"_s);
        QCOMPARE(rig.screen.contentsAsked, 0);
        QCOMPARE(rig.clock.sleepers(), std::size_t(0));
    }

    void aHandlerOfAFailureMayStartAgain()
    {
        RecorderRig rig;
        rig.screen.pictureFailure = u"no picture today"_s;
        bool hasStarted = false;
        connect(rig.recorder.get(), &Recorder::isRecordingChanged, this, [&] {
            if (!rig.recorder->isRecording() && !std::exchange(hasStarted, true)) {
                rig.screen.pictureFailure.clear();
                rig.recorder->toggleRecording();
            }
        });
        rig.recorder->toggleRecording();
        QTRY_VERIFY(hasStarted);
        QCOMPARE(rig.recorder->status(), u"Waiting for your next screen"_s);
        rig.settle();
        QVERIFY(rig.recorder->isRecording());
        // The failing pass was still at it when the new loop began: the next round saves.
        rig.nextPass();
        QCOMPARE(rig.saved().size(), 1);
    }

    void aHandlerOfTheLockMayStartAgain()
    {
        RecorderRig rig;
        rig.state.isLockedNow = true;
        bool hasStarted = false;
        connect(rig.recorder.get(), &Recorder::isRecordingChanged, this, [&] {
            if (!rig.recorder->isRecording() && !std::exchange(hasStarted, true)) {
                rig.state.isLockedNow = false;
                rig.recorder->startWithoutAsking();
            }
        });
        rig.recorder->toggleRecording();
        QTRY_VERIFY(hasStarted);
        QVERIFY(rig.recorder->isRecording());
        QVERIFY(!rig.recorder->stoppedForAway());
        QCOMPARE(rig.recorder->status(), u"Waiting for your next screen"_s);
        rig.settle();
        QCOMPARE(rig.saved().size(), 1);
    }
};

QTEST_GUILESS_MAIN(RecorderSignalsTest)
#include "RecorderSignalsTest.moc"
