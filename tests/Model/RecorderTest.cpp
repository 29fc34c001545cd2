// SPDX-License-Identifier: Apache-2.0
//
// The recording loop: its starts and stops, and what it remembers between passes.
#include "tests/Model/RecorderRig.h"

#include <QScopeGuard>
#include <QSemaphore>
#include <QSettings>
#include <QSignalSpy>

using namespace mossbank;
using namespace Qt::StringLiterals;

class RecorderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isOffToBeginWith()
    {
        RecorderRig rig;
        QVERIFY(!rig.recorder->isRecording());
        QCOMPARE(rig.recorder->status(), u"Recording is off"_s);
        QVERIFY(!rig.recorder->errorMessage());
        QVERIFY(!rig.recorder->nextCaptureAt());
    }

    void aStartSaysThatItWaitsAndRunsTheFirstPassAtOnce()
    {
        RecorderRig rig;
        rig.recorder->toggleRecording();
        QVERIFY(rig.recorder->isRecording());
        QCOMPARE(rig.recorder->status(), u"Waiting for your next screen"_s);
        rig.settle();
        QCOMPARE(rig.saved().size(), 1);
        QCOMPARE(rig.recorder->status(), u"Saved at 22:13:20"_s);
        QCOMPARE(rig.recorder->nextCaptureAt(), std::optional(rig.clock.now() + 30));
    }

    void aSecondPressStops()
    {
        RecorderRig rig;
        rig.start();
        rig.recorder->toggleRecording();
        QVERIFY(!rig.recorder->isRecording());
        QCOMPARE(rig.recorder->status(), u"Recording is off"_s);
        QVERIFY(!rig.recorder->nextCaptureAt());
        QCOMPARE(rig.clock.sleepers(), std::size_t(0));
        rig.clock.advance(1000);
        rig.settle();
        QCOMPARE(rig.screen.contentsAsked, 1);
    }

    void withoutALibraryNothingStartsAndNothingIsSaid()
    {
        RecorderRig rig(false);
        rig.recorder->toggleRecording();
        rig.recorder->startWithoutAsking();
        QVERIFY(!rig.recorder->isRecording());
        QCOMPARE(rig.recorder->status(), u"Recording is off"_s);
        QCOMPARE(rig.screen.timesAsked, 0);
    }

    void withoutPermissionTheUsersStartHasTheSystemAsk()
    {
        RecorderRig rig;
        rig.screen.isAllowedNow = false;
        QSignalSpy asked(rig.recorder.get(), &Recorder::askedForPermissionChanged);
        rig.recorder->toggleRecording();
        QVERIFY(!rig.recorder->isRecording());
        QCOMPARE(rig.screen.timesAsked, 1);
        QVERIFY(rig.recorder->askedForPermission());
        QCOMPARE(asked.count(), 1);
        QCOMPARE(rig.recorder->status(), u"Recording is off"_s);
    }

    void withoutPermissionAnUnaskedStartSaysSoAndAsksNobody()
    {
        RecorderRig rig;
        rig.screen.isAllowedNow = false;
        rig.recorder->startWithoutAsking();
        QVERIFY(!rig.recorder->isRecording());
        QCOMPARE(rig.screen.timesAsked, 0);
        QVERIFY(!rig.recorder->askedForPermission());
        QCOMPARE(rig.recorder->status(),
                 u"Recording did not start: screen recording is not allowed"_s);
    }

    void anUnaskedStartWithPermissionRecords()
    {
        RecorderRig rig;
        rig.recorder->startWithoutAsking();
        rig.settle();
        QCOMPARE(rig.saved().size(), 1);
        rig.recorder->startWithoutAsking();
        QVERIFY2(rig.recorder->isRecording(), "an unasked start while recording must not stop it");
    }

    void aStartEndsAPauseAndTheWishToComeBack()
    {
        RecorderRig rig;
        rig.pauses.isPausedNow = true;
        rig.recorder->setStoppedForAway(true);
        rig.recorder->toggleRecording();
        QVERIFY(!rig.pauses.isPausedNow);
        QVERIFY(!rig.recorder->stoppedForAway());
    }

    void aStartLeavesTheErrorMessageStanding()
    {
        RecorderRig rig;
        rig.recorder->setErrorMessage(u"Screenshots will be saved unencrypted: no keyring"_s);
        rig.start();
        QCOMPARE(rig.recorder->errorMessage(),
                 std::optional(u"Screenshots will be saved unencrypted: no keyring"_s));
    }

    void aStopEndsAPauseAndForgetsTheRelaunch()
    {
        RecorderRig rig;
        {
            QSettings stored(rig.preferences.path(), QSettings::IniFormat);
            stored.setValue(u"recordsAfterRelaunch"_s, 1);
        }
        rig.start();
        const int before = rig.pauses.timesCancelled;
        rig.recorder->setStoppedForAway(true);
        rig.recorder->stop();
        QCOMPARE(rig.pauses.timesCancelled, before + 1);
        QVERIFY(!rig.recorder->stoppedForAway());
        QSettings stored(rig.preferences.path(), QSettings::IniFormat);
        QVERIFY(!stored.contains(u"recordsAfterRelaunch"_s));
    }

    void anUnchangedScreenIsStillSkippedAfterAStop()
    {
        RecorderRig rig;
        rig.start();
        rig.recorder->stop();
        rig.clock.advance(60);
        rig.start();
        QCOMPARE(rig.saved().size(), 1);
        QCOMPARE(rig.recorder->status(), u"Skipped an unchanged screen"_s);
    }

    void afterAFreshLaunchTheFirstScreenIsSaved()
    {
        RecorderRig rig;
        rig.start();
        rig.makeRecorder();
        rig.start();
        QCOMPARE(rig.saved().size(), 2);
    }

    void aStopForgetsWhatMovesOnItsOwn()
    {
        RecorderRig rig;
        rig.start();
        rig.drawBlock(QRect(0, 0, 2, 2));
        rig.nextPass();
        QVERIFY(!rig.recorder->screensSeen().motion.sightings.empty());
        rig.recorder->stop();
        QVERIFY(rig.recorder->screensSeen().motion.sightings.empty());
        QVERIFY(!rig.recorder->screensSeen().lastChecked);
        QVERIFY(rig.recorder->screensSeen().lastScreen);
        QVERIFY(rig.recorder->screensSeen().lastText);
    }

    void aStopHasTheRecogniserRest()
    {
        RecorderRig rig;
        rig.start();
        rig.nextPass();
        QCOMPARE(rig.recognizer.rests(), 0);
        rig.recorder->stop();
        QCOMPARE(rig.recognizer.rests(), 1);
    }

    void aStopInTheMiddleOfAReadingHasItRestAlsoAfterwards()
    {
        RecorderRig rig;
        QSemaphore reading;
        rig.recognizer.setHook([&] { reading.acquire(); });
        rig.recorder->toggleRecording();
        // Whatever fails: the rig waits for the reading.
        const auto released = qScopeGuard([&] { reading.release(100); });
        QTRY_COMPARE(rig.recognizer.readings(), 1);
        rig.recorder->stop();
        QCOMPARE(rig.recognizer.rests(), 1);
        // Also when recording is on again by then.
        rig.recorder->toggleRecording();
        reading.release();
        QTRY_VERIFY(!rig.recorder->isCapturing());
        QCOMPARE(rig.recognizer.rests(), 2);
        reading.release(100);
        rig.nextPass();
        QCOMPARE(rig.saved().size(), 1);
        QCOMPARE(rig.recognizer.rests(), 2);
    }

    void aFailedPassHasTheRecogniserRest()
    {
        RecorderRig rig;
        rig.recognizer.setFailure(std::make_exception_ptr(StoreError(u"out of ink"_s)));
        rig.start();
        QVERIFY(!rig.recorder->isRecording());
        QVERIFY(rig.recognizer.rests() > 0);
    }

    void captureNowDoesNothingWhileOff()
    {
        RecorderRig rig;
        rig.recorder->captureNow();
        QCoreApplication::processEvents();
        rig.settle();
        QCOMPARE(rig.screen.contentsAsked, 0);
        QCOMPARE(rig.recorder->status(), u"Recording is off"_s);
    }

    void captureNowIsAPassOutOfTurn()
    {
        RecorderRig rig;
        rig.start();
        rig.clock.advance(10);
        rig.drawBlock(QRect(0, 0, 100, 100));
        rig.recorder->captureNow();
        QTRY_COMPARE(rig.saved().size(), 2);
        rig.settle();
        QCOMPARE(rig.clock.untilNextAlarm(), 20.0);
    }

    void captureNowGivesWayToAPassUnderWay()
    {
        RecorderRig rig;
        rig.screen.holdsPicture = true;
        rig.recorder->toggleRecording();
        QTRY_COMPARE(rig.screen.requests.size(), std::size_t(1));
        rig.recorder->captureNow();
        QCoreApplication::processEvents();
        QCOMPARE(rig.screen.contentsAsked, 1);
        rig.screen.releasePicture();
        rig.settle();
        QCOMPARE(rig.saved().size(), 1);
    }

    void aQuickStopAndStartLetsTheOldPassEndFirst()
    {
        RecorderRig rig;
        rig.screen.holdsPicture = true;
        rig.recorder->toggleRecording();
        QTRY_COMPARE(rig.screen.requests.size(), std::size_t(1));
        rig.recorder->stop();
        rig.recorder->toggleRecording();
        // The new loop's first pass finds the old one still at it.
        QTRY_COMPARE(rig.clock.sleepers(), std::size_t(1));
        QCOMPARE(rig.screen.contentsAsked, 1);
        rig.screen.holdsPicture = false;
        rig.screen.releasePicture();
        QTRY_VERIFY(!rig.recorder->isCapturing());
        QCOMPARE(rig.saved().size(), 0);
        QCOMPARE(rig.recorder->status(), u"Waiting for your next screen"_s);
        rig.nextPass();
        QCOMPARE(rig.saved().size(), 1);
    }

    void aSkipForSecureInputIsToldUntilAnotherLine()
    {
        RecorderRig rig;
        rig.secureInput.isActiveNow = true;
        QVERIFY(!rig.recorder->secureInputPaused());
        rig.start();
        QVERIFY(rig.recorder->secureInputPaused());
        rig.recorder->setStatus(u"another line"_s);
        QVERIFY(!rig.recorder->secureInputPaused());
        rig.nextPass();
        QVERIFY(rig.recorder->secureInputPaused());
        rig.secureInput.isActiveNow = false;
        rig.nextPass();
        QVERIFY(!rig.recorder->secureInputPaused());
        rig.secureInput.isActiveNow = true;
        rig.nextPass();
        rig.recorder->stop();
        rig.recorder->setStatus(
            u"Skipped while a password field or other secure input is active"_s);
        QVERIFY(!rig.recorder->secureInputPaused());
    }

    void aRunOfTheSameSkipNotifiesOnce()
    {
        RecorderRig rig;
        rig.start();
        rig.nextPass();
        QSignalSpy changes(rig.recorder.get(), &Recorder::statusChanged);
        rig.nextPass();
        rig.nextPass();
        QCOMPARE(rig.recorder->status(), u"Skipped an unchanged screen"_s);
        QCOMPARE(changes.count(), 0);
    }

    void aRecorderMayGoAwayInTheMiddleOfAPass_data()
    {
        QTest::addColumn<QString>("moment");
        for (const char* moment : {"content", "picture", "reading", "address", "saving", "resting"})
            QTest::newRow(moment) << QString::fromLatin1(moment);
    }
    void aRecorderMayGoAwayInTheMiddleOfAPass()
    {
        QFETCH(QString, moment);
        RecorderRig rig;
        QSemaphore reading;
        rig.screen.holdsContent = moment == u"content";
        rig.screen.holdsPicture = moment == u"picture";
        rig.addresses.holdsAnswers = moment == u"address";
        rig.addresses.browsers = {RecorderRig::kEditor.bundleID};
        if (moment == u"reading")
            rig.recognizer.setHook([&] { reading.acquire(); });
        if (moment == u"saving")
            rig.sealing.hold();
        rig.recorder->toggleRecording();
        const auto isThere = [&] {
            if (moment == u"content")
                return rig.screen.contentsAsked == 1;
            if (moment == u"picture")
                return rig.screen.requests.size() == 1;
            if (moment == u"reading")
                return rig.recognizer.readings() == 1;
            if (moment == u"address")
                return rig.recorder->isSaving() && rig.recognizer.readings() == 1;
            if (moment == u"saving")
                return rig.sealing.isHolding();
            return rig.clock.sleepers() == 1;
        };
        QTRY_VERIFY(isThere());
        rig.recorder.reset();
        if (moment == u"content")
            rig.screen.releaseContent();
        if (moment == u"picture")
            rig.screen.releasePicture();
        if (moment == u"address")
            rig.addresses.release();
        reading.release();
        rig.sealing.release();
        QThreadPool::globalInstance()->waitForDone();
        QTest::qWait(20);
        QCOMPARE(rig.clock.sleepers(), std::size_t(0));
        const bool isSaved = moment == u"saving" || moment == u"resting";
        QCOMPARE(rig.saved().size(), isSaved ? 1 : 0);
        rig.makeRecorder();
    }

    void anotherModeLearnsAfreshWhatMoves()
    {
        RecorderRig rig;
        rig.start();
        rig.drawBlock(QRect(0, 0, 2, 2));
        rig.nextPass();
        QVERIFY(!rig.recorder->screensSeen().motion.sightings.empty());
        rig.preferences.setChangeMode(u"any"_s);
        QVERIFY(rig.recorder->screensSeen().motion.sightings.empty());
        QVERIFY(rig.recorder->screensSeen().lastChecked);
    }

    void openPermissionsOpensTheSystemsSettings()
    {
        RecorderRig rig;
        rig.recorder->openPermissions();
        QCOMPARE(rig.screen.timesOpened, 1);
    }

    void turningTheChoiceToComeBackOffTakesTheWishBack()
    {
        RecorderRig rig;
        rig.recorder->setStoppedForAway(true);
        rig.preferences.setResumesAfterAway(false);
        QVERIFY(!rig.recorder->stoppedForAway());
    }

    void turningTheSkippingOffForgetsTheScreensSeen()
    {
        RecorderRig rig;
        rig.start();
        rig.drawBlock(QRect(0, 0, 2, 2));
        rig.nextPass();
        QVERIFY(rig.recorder->screensSeen().lastScreen);
        QVERIFY(rig.recorder->screensSeen().lastChecked);
        QVERIFY(!rig.recorder->screensSeen().motion.sightings.empty());
        rig.preferences.setSkipsUnchangedScreens(false);
        QVERIFY(!rig.recorder->screensSeen().lastScreen);
        QVERIFY(!rig.recorder->screensSeen().lastChecked);
        QVERIFY(rig.recorder->screensSeen().motion.sightings.empty());
    }
};

QTEST_GUILESS_MAIN(RecorderTest)
#include "RecorderTest.moc"
