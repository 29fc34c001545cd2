// SPDX-License-Identifier: Apache-2.0
//
// The pass that follows a switch of application.
#include "tests/Model/RecorderRig.h"

using namespace mossbank;
using namespace Qt::StringLiterals;

class AppSwitchTest : public QObject {
    Q_OBJECT

    /// The user goes to another application, which fills the screen with something new.
    static void switchTo(RecorderRig& rig, const Application& application, const QColor& color)
    {
        rig.screen.pictureNow.fill(color);
        rig.front.activate(application);
        QCoreApplication::processEvents();
    }

    static void letTheNewOneDraw(RecorderRig& rig)
    {
        rig.clock.advance(0.45);
        rig.settle();
    }

private Q_SLOTS:
    void aSwitchIsCapturedShortlyAfter()
    {
        RecorderRig rig;
        rig.start();
        rig.clock.advance(10);
        switchTo(rig, RecorderRig::kOther, Qt::blue);
        rig.clock.advance(0.44);
        rig.settle();
        QCOMPARE(rig.saved().size(), 1);
        rig.clock.advance(0.01);
        rig.settle();
        QCOMPARE(rig.saved().size(), 2);
        QCOMPARE(rig.saved().first().appName, u"Other"_s);
    }

    void itDoesNotMoveTheSchedule()
    {
        RecorderRig rig;
        rig.start();
        const auto next = rig.recorder->nextCaptureAt();
        rig.clock.advance(10);
        switchTo(rig, RecorderRig::kOther, Qt::blue);
        letTheNewOneDraw(rig);
        QCOMPARE(rig.saved().size(), 2);
        QCOMPARE(rig.recorder->nextCaptureAt(), next);
        QCOMPARE(rig.clock.untilNextAlarm(), 30 - 10 - 0.45);
    }

    void aRapidRunOfSwitchesIsCapturedOnce()
    {
        RecorderRig rig;
        rig.start();
        for (int switches = 0; switches < 5; ++switches) {
            switchTo(rig, switches % 2 ? RecorderRig::kEditor : RecorderRig::kOther, Qt::blue);
            rig.clock.advance(0.4);
            rig.settle();
        }
        QCOMPARE(rig.saved().size(), 1);
        letTheNewOneDraw(rig);
        QCOMPARE(rig.saved().size(), 2);
        QCOMPARE(rig.screen.contentsAsked, 2);
    }

    void turnedOffNothingFollowsASwitch()
    {
        RecorderRig rig;
        rig.preferences.setCapturesOnAppSwitch(false);
        rig.start();
        switchTo(rig, RecorderRig::kOther, Qt::blue);
        rig.clock.advance(5);
        rig.settle();
        QCOMPARE(rig.saved().size(), 1);
        rig.preferences.setCapturesOnAppSwitch(true);
        switchTo(rig, RecorderRig::kEditor, Qt::green);
        letTheNewOneDraw(rig);
        QCOMPARE(rig.saved().size(), 2);
    }

    void turningItOffCancelsTheOneThatWaits()
    {
        RecorderRig rig;
        rig.start();
        switchTo(rig, RecorderRig::kOther, Qt::blue);
        rig.preferences.setCapturesOnAppSwitch(false);
        letTheNewOneDraw(rig);
        QCOMPARE(rig.saved().size(), 1);
    }

    void aStopCancelsTheOneThatWaits()
    {
        RecorderRig rig;
        rig.start();
        switchTo(rig, RecorderRig::kOther, Qt::blue);
        rig.recorder->stop();
        QCOMPARE(rig.clock.sleepers(), std::size_t(0));
        letTheNewOneDraw(rig);
        QCOMPARE(rig.saved().size(), 1);
    }

    void aSwitchDuringTheCaptureOfASwitchDropsIt()
    {
        RecorderRig rig;
        rig.start();
        QSemaphore reading;
        rig.recognizer.setHook([&] { reading.acquire(); });
        switchTo(rig, RecorderRig::kOther, Qt::blue);
        rig.clock.advance(0.45);
        QTRY_COMPARE(rig.recognizer.readings(), 2);
        // Back to where it was before the reading ends: the same application is in front.
        rig.front.activate(RecorderRig::kEditor);
        rig.front.activate(RecorderRig::kOther);
        QCoreApplication::processEvents();
        reading.release(2);
        QTRY_VERIFY(!rig.recorder->isCapturing());
        QCOMPARE(rig.saved().size(), 1);
        rig.clock.advance(0.45 + 0.1);
        rig.settle();
        QCOMPARE(rig.saved().size(), 2);
    }

    void onceStoppedASwitchIsNotEvenHeard()
    {
        RecorderRig rig;
        rig.start();
        QCOMPARE(rig.front.listeners(), 1);
        rig.recorder->stop();
        QCOMPARE(rig.front.listeners(), 0);
    }

    void whileRecordingIsOffAWatcherStaysIdle()
    {
        RecorderRig rig;
        rig.preferences.setCapturesOnAppSwitch(true);
        switchTo(rig, RecorderRig::kOther, Qt::blue);
        QCOMPARE(rig.clock.sleepers(), std::size_t(0));
        rig.clock.advance(5);
        QCOMPARE(rig.screen.contentsAsked, 0);
    }

    void itWaitsForAPassUnderWay()
    {
        RecorderRig rig;
        rig.screen.holdsPicture = true;
        rig.recorder->toggleRecording();
        QTRY_COMPARE(rig.screen.requests.size(), std::size_t(1));
        switchTo(rig, RecorderRig::kOther, Qt::blue);
        rig.clock.advance(1.5);
        QCoreApplication::processEvents();
        QCOMPARE(rig.screen.contentsAsked, 1);
        rig.screen.holdsPicture = false;
        rig.screen.releasePicture();
        rig.settle();
        rig.clock.advance(0.1);
        rig.settle();
        QCOMPARE(rig.screen.contentsAsked, 2);
    }

    void itWaitsForAPassTwoSecondsAndNoLonger()
    {
        RecorderRig rig;
        rig.screen.holdsPicture = true;
        rig.recorder->toggleRecording();
        QTRY_COMPARE(rig.screen.requests.size(), std::size_t(1));
        switchTo(rig, RecorderRig::kOther, Qt::blue);
        rig.clock.advance(0.45 + 2.01);
        QCOMPARE(rig.clock.sleepers(), std::size_t(0));
        rig.screen.holdsPicture = false;
        rig.screen.releasePicture();
        rig.settle();
        QCOMPARE(rig.screen.contentsAsked, 1);
    }

    void itIsAPassWithAllItsChecks()
    {
        RecorderRig rig;
        rig.start();
        switchTo(rig, RecorderRig::kSecret, Qt::blue);
        letTheNewOneDraw(rig);
        QCOMPARE(rig.recorder->status(), u"Skipped an excluded app"_s);
        QCOMPARE(rig.saved().size(), 1);
    }
};

QTEST_GUILESS_MAIN(AppSwitchTest)
#include "AppSwitchTest.moc"
