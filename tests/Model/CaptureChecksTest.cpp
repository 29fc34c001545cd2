// SPDX-License-Identifier: Apache-2.0
//
// The reasons of a capture pass not to save: which come before which, what each says, and what a
// failure does.
#include "tests/Model/RecorderRig.h"

#include <QSignalSpy>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

const QString kLocked = u"Paused when the screen locked"_s;
const QString kAsleep = u"Skipped while the display is asleep"_s;
const QString kNobody = u"Waiting for an active application"_s;
const QString kMossbankInFront = u"Switch to another app to capture it"_s;
const QString kExcludedInFront = u"Skipped an excluded app"_s;
const QString kSecureInput = u"Skipped while a password field or other secure input is active"_s;
const QString kExcludedVisible = u"Skipped: an excluded app is visible"_s;
const QString kPermissionGone =
    u"Screen recording permission is unavailable. Enable it in System Settings, then reopen "
    "Mossbank."_s;

} // namespace

class CaptureChecksTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Every reason at once; then without the first, without the first two, and so on: each time
    // the next one in the order is the one that speaks.
    void eachReasonHasItsTurn_data()
    {
        QTest::addColumn<int>("reasonsLeft");
        QTest::addColumn<QString>("status");
        QTest::addColumn<bool>("asksForContent");
        QTest::addColumn<bool>("asksForPicture");
        QTest::newRow("locked") << 7 << kLocked << false << false;
        QTest::newRow("asleep") << 6 << kAsleep << false << false;
        QTest::newRow("nobody in front") << 5 << kNobody << false << false;
        QTest::newRow("this application in front") << 4 << kMossbankInFront << false << false;
        QTest::newRow("excluded in front") << 3 << kExcludedInFront << false << false;
        QTest::newRow("secure input") << 2 << kSecureInput << false << false;
        QTest::newRow("excluded visible") << 1 << kExcludedVisible << true << false;
        QTest::newRow("none") << 0 << u"Saved at 22:13:20"_s << true << true;
    }
    void eachReasonHasItsTurn()
    {
        QFETCH(int, reasonsLeft);
        QFETCH(QString, status);
        QFETCH(bool, asksForContent);
        QFETCH(bool, asksForPicture);
        RecorderRig rig;
        rig.state.isLockedNow = reasonsLeft >= 7;
        rig.state.isAsleepNow = reasonsLeft >= 6;
        if (reasonsLeft >= 5)
            rig.front.setCurrent(std::nullopt);
        else if (reasonsLeft >= 4)
            rig.front.setCurrent(RecorderRig::kMossbank);
        else if (reasonsLeft >= 3)
            rig.front.setCurrent(RecorderRig::kSecret);
        rig.secureInput.isActiveNow = reasonsLeft >= 2;
        if (reasonsLeft >= 1)
            rig.screen.contentNow.windows.append(
                RecorderRig::window(RecorderRig::kSecret, QRect(900, 900, 10, 10)));

        rig.start();
        QCOMPARE(rig.recorder->status(), status);
        QCOMPARE(rig.screen.contentsAsked > 0, asksForContent);
        QCOMPARE(!rig.screen.requests.empty(), asksForPicture);
        QCOMPARE(rig.saved().size(), asksForPicture ? 1 : 0);
        QVERIFY(!rig.recorder->errorMessage());
    }

    void anApplicationWithoutIdentityIsNobody()
    {
        RecorderRig rig;
        rig.front.setCurrent(Application{.bundleID = {}, .name = u"Nameless"_s});
        rig.start();
        QCOMPARE(rig.recorder->status(), kNobody);
    }

    void aSkipLeavesWhatWasRememberedAlone()
    {
        RecorderRig rig;
        rig.start();
        const auto checked = rig.recorder->screensSeen().lastChecked;
        QVERIFY(checked);
        rig.drawBlock(QRect(0, 0, 100, 100));
        rig.state.isAsleepNow = true;
        rig.nextPass();
        QCOMPARE(rig.recorder->status(), kAsleep);
        QCOMPARE(rig.recorder->screensSeen().lastChecked, checked);
        QCOMPARE(rig.recorder->screensSeen().lastScreen, checked);
        QCOMPARE(rig.recorder->screensSeen().lastDisplayID, std::optional<DisplayID>(1));
        QVERIFY(rig.recorder->isRecording());
    }

    void theScheduleGoesOnAfterASkip()
    {
        RecorderRig rig;
        rig.secureInput.isActiveNow = true;
        rig.start();
        rig.secureInput.isActiveNow = false;
        rig.nextPass();
        QCOMPARE(rig.saved().size(), 1);
    }

    void aWithdrawnPermissionStopsForGood()
    {
        RecorderRig rig;
        rig.start();
        rig.screen.isAllowedNow = false;
        rig.clock.advance(30);
        rig.settle();
        QVERIFY(!rig.recorder->isRecording());
        QCOMPARE(rig.recorder->errorMessage(), std::optional(kPermissionGone));
        QCOMPARE(rig.recorder->status(), u"Recording is off"_s);
        QVERIFY(!rig.recorder->stoppedForAway());
        QCOMPARE(rig.screen.timesAsked, 0);
    }

    void aWithdrawnPermissionWeighsMoreThanALock()
    {
        RecorderRig rig;
        rig.start();
        rig.screen.isAllowedNow = false;
        rig.state.isLockedNow = true;
        rig.clock.advance(30);
        rig.settle();
        QCOMPARE(rig.recorder->errorMessage(), std::optional(kPermissionGone));
        QVERIFY2(!rig.recorder->stoppedForAway(), "what the system forbids does not come back");
    }

    void aLockedScreenStopsAndMayComeBack_data()
    {
        QTest::addColumn<bool>("duringThePicture");
        QTest::addColumn<bool>("resumesAfterAway");
        QTest::newRow("before, coming back") << false << true;
        QTest::newRow("before, staying off") << false << false;
        QTest::newRow("during, coming back") << true << true;
        QTest::newRow("during, staying off") << true << false;
    }
    void aLockedScreenStopsAndMayComeBack()
    {
        QFETCH(bool, duringThePicture);
        QFETCH(bool, resumesAfterAway);
        RecorderRig rig;
        rig.preferences.setResumesAfterAway(resumesAfterAway);
        rig.state.isLockedNow = !duringThePicture;
        rig.screen.onPicture = [&] {
            rig.state.isLockedNow = true;
        };
        rig.start();
        QVERIFY(!rig.recorder->isRecording());
        QVERIFY(!rig.recorder->isCapturing());
        QCOMPARE(rig.recorder->status(), kLocked);
        QCOMPARE(rig.recorder->stoppedForAway(), resumesAfterAway);
        QCOMPARE(rig.saved().size(), 0);
        QVERIFY(!rig.recorder->errorMessage());
    }

    void aPasswordFieldThatOpensDuringThePictureDropsIt()
    {
        RecorderRig rig;
        rig.screen.onPicture = [&] {
            rig.secureInput.isActiveNow = true;
        };
        rig.start();
        QCOMPARE(rig.recorder->status(), kSecureInput);
        QVERIFY(rig.recorder->isRecording());
        QVERIFY(!rig.recorder->isCapturing());
        QVERIFY(!rig.recorder->screensSeen().lastChecked);
        QCOMPARE(rig.saved().size(), 0);
    }

    void aLockWeighsMoreThanAPasswordField()
    {
        RecorderRig rig;
        rig.screen.onPicture = [&] {
            rig.secureInput.isActiveNow = true;
            rig.state.isLockedNow = true;
        };
        rig.start();
        QCOMPARE(rig.recorder->status(), kLocked);
    }

    void aPassNoLongerCurrentEndsWithoutAWord_data()
    {
        QTest::addColumn<QString>("what");
        QTest::newRow("stopped") << u"stop"_s;
        QTest::newRow("an exclusion was added") << u"exclusion"_s;
        QTest::newRow("the interval was changed") << u"interval"_s;
    }
    void aPassNoLongerCurrentEndsWithoutAWord()
    {
        QFETCH(QString, what);
        RecorderRig rig;
        // Each of these would speak if the pass were still current.
        rig.screen.onPicture = [&] {
            rig.secureInput.isActiveNow = true;
            rig.state.isLockedNow = true;
        };
        rig.screen.holdsPicture = true;
        rig.recorder->toggleRecording();
        QTRY_COMPARE(rig.screen.requests.size(), std::size_t(1));
        if (what == u"stop")
            rig.recorder->stop();
        else if (what == u"exclusion")
            rig.preferences.setExcludedBundles({u"org.example.New"_s});
        else
            rig.preferences.setInterval(60);
        const QString status = rig.recorder->status();
        rig.screen.releasePicture();
        QTRY_VERIFY(!rig.recorder->isCapturing());
        QCOMPARE(rig.recorder->status(), status);
        QVERIFY(!rig.recorder->errorMessage());
        QCOMPARE(rig.recorder->isRecording(), what != u"stop");
        QCOMPARE(rig.saved().size(), 0);
    }

    void aPictureOfAPassNoLongerCurrentIsNotLookedAt()
    {
        RecorderRig rig;
        rig.screen.holdsPicture = true;
        rig.recorder->toggleRecording();
        QTRY_COMPARE(rig.screen.requests.size(), std::size_t(1));
        QSignalSpy saving(rig.recorder.get(), &Recorder::isSavingChanged);
        rig.recorder->stop();
        rig.screen.releasePicture();
        QTRY_VERIFY(!rig.recorder->isCapturing());
        QThreadPool::globalInstance()->waitForDone();
        QVERIFY(!rig.recorder->screensSeen().lastChecked);
        QCOMPARE(rig.recognizer.readings(), 0);
        QCOMPARE(saving.count(), 0);
    }

    void anAnswerThatIsGivenUpIsAFailure()
    {
        RecorderRig rig;
        rig.screen.holdsContent = true;
        rig.recorder->toggleRecording();
        QTRY_COMPARE(rig.screen.contentsAsked, 1);
        rig.screen.giveContentUp();
        rig.settle();
        QVERIFY(!rig.recorder->isRecording());
        QCOMPARE(rig.recorder->errorMessage(),
                 std::optional(u"Capture stopped: What was asked for was given up."_s));
    }

    void anAddressThatFailsCostsNothingButTheLink()
    {
        RecorderRig rig;
        rig.addresses.browsers = {RecorderRig::kEditor.bundleID};
        rig.addresses.failure = u"the bus has gone"_s;
        rig.start();
        QVERIFY(rig.recorder->isRecording());
        QVERIFY(!rig.recorder->errorMessage());
        QCOMPARE(rig.saved().size(), 1);
        QCOMPARE(rig.saved().first().link, QString());
        QCOMPARE(rig.afterSave.calls,
                 (QStringList{u"readForMeaning"_s, u"applyRetention"_s, u"refresh"_s}));
    }

    void aFailureAfterTheSaveDoesNotReachThePass()
    {
        RecorderRig rig;
        rig.afterSave.failure = u"database is locked"_s;
        rig.start();
        QVERIFY(rig.recorder->isRecording());
        QVERIFY(!rig.recorder->errorMessage());
        QVERIFY(!rig.recorder->isSaving());
        QCOMPARE(rig.saved().size(), 1);
        QCOMPARE(rig.afterSave.calls,
                 (QStringList{u"readForMeaning"_s, u"applyRetention"_s, u"refresh"_s}));
    }

    void aStopWhileTheContentIsAskedForTakesNoPicture()
    {
        RecorderRig rig;
        rig.screen.holdsContent = true;
        rig.recorder->toggleRecording();
        QTRY_COMPARE(rig.screen.contentsAsked, 1);
        rig.recorder->stop();
        rig.screen.releaseContent();
        QTRY_VERIFY(!rig.recorder->isCapturing());
        QVERIFY(rig.screen.requests.empty());
        QCOMPARE(rig.recorder->status(), u"Recording is off"_s);
    }

    void aFailureStopsTheRecordingAndIsTold_data()
    {
        QTest::addColumn<QString>("what");
        QTest::addColumn<QString>("message");
        QTest::newRow("content") << u"content"_s << u"Capture stopped: no windows today"_s;
        QTest::newRow("picture") << u"picture"_s << u"Capture stopped: no picture today"_s;
        QTest::newRow("no display")
            << u"display"_s
            << u"Capture stopped: No display is available. Check your display connection and try "
               "again."_s;
        QTest::newRow("reading") << u"reading"_s << u"Capture stopped: cannot read"_s;
        QTest::newRow("a picture without pixels")
            << u"encoding"_s << u"Capture stopped: Could not finish writing the screenshot."_s;
    }
    void aFailureStopsTheRecordingAndIsTold()
    {
        QFETCH(QString, what);
        QFETCH(QString, message);
        RecorderRig rig;
        if (what == u"content")
            rig.screen.contentFailure = u"no windows today"_s;
        if (what == u"picture")
            rig.screen.pictureFailure = u"no picture today"_s;
        if (what == u"display")
            rig.screen.contentNow.displays.clear();
        if (what == u"reading")
            rig.recognizer.setFailure(std::make_exception_ptr(StoreError(u"cannot read"_s)));
        if (what == u"encoding")
            rig.screen.pictureNow = QImage();
        rig.start();
        QVERIFY(!rig.recorder->isRecording());
        QVERIFY(!rig.recorder->isCapturing());
        QVERIFY(!rig.recorder->isSaving());
        QCOMPARE(rig.recorder->errorMessage(), std::optional(message));
        QCOMPARE(rig.recorder->status(), u"Recording is off"_s);
        QVERIFY(!rig.recorder->stoppedForAway());
        QCOMPARE(rig.saved().size(), 0);
        QCOMPARE(rig.clock.sleepers(), std::size_t(0));
    }

    void aFailureOfAPassNoLongerCurrentIsDropped()
    {
        RecorderRig rig;
        QSemaphore reading;
        rig.recognizer.setHook([&] { reading.acquire(); });
        rig.recognizer.setFailure(std::make_exception_ptr(StoreError(u"cannot read"_s)));
        rig.recorder->toggleRecording();
        QTRY_COMPARE(rig.recognizer.readings(), 1);
        rig.recorder->stop();
        reading.release();
        QTRY_VERIFY(!rig.recorder->isCapturing());
        QVERIFY(!rig.recorder->errorMessage());
        QVERIFY(!rig.recorder->isSaving());
    }

    void aFailedSaveIsOfferedAgainAfterTheNextStart()
    {
        RecorderRig rig;
        rig.start();
        rig.drawBlock(QRect(0, 0, 100, 100));
        QVERIFY(QDir(rig.store->images()).removeRecursively());
        rig.clock.advance(30);
        rig.settle();
        QVERIFY(!rig.recorder->isRecording());
        QVERIFY2(rig.recorder->errorMessage()->startsWith(u"Capture stopped: "_s),
                 qPrintable(*rig.recorder->errorMessage()));
        QCOMPARE(rig.saved().size(), 1);
        QVERIFY(QDir().mkdir(rig.store->images()));
        rig.start();
        QCOMPARE(rig.saved().size(), 2);
    }
};

QTEST_GUILESS_MAIN(CaptureChecksTest)
#include "CaptureChecksTest.moc"
