// SPDX-License-Identifier: Apache-2.0
//
// Away and return, and pauses for a while, in the whole model with the desktop told.
#include "Mossbank/Model/AppModel.h"
#include "tests/Model/RecorderRig.h"

#include <QSettings>
#include <QSignalSpy>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

constexpr double kUntilSettled = 1.5;
/// A quarter to nine in the morning.
constexpr Date kMorning = {1'700'037'900};

} // namespace

class PausesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_model.reset();
        m_rig = std::make_unique<RecorderRig>(false);
        m_rig->clock.setNow(kMorning);
        launch();
    }

    void cleanup()
    {
        m_model.reset();
        m_rig.reset();
    }

    void whoLeavesIsNotRecordedAndWhoReturnsIs_data()
    {
        QTest::addColumn<QStringList>("events");
        QTest::addColumn<QString>("status");
        const QString asleep = u"Paused when your Mac went to sleep"_s;
        const QString elsewhere = u"Paused when your session became inactive"_s;
        const QString locked = u"Paused when the screen locked"_s;
        const auto row = [](const char* events, const QString& status) {
            QTest::newRow(events) << QString::fromLatin1(events).split(u' ') << status;
        };
        row("lock unlock", locked);
        row("sleep wake", asleep);
        row("resign active", elsewhere);
        row("displayOff lock displayOn unlock", locked);
        row("lock sleep wake unlock", locked);
        row("sleep lock wake unlock", asleep);
        row("lock sleep unlock wake", locked);
        row("sleep wake wake", asleep);
        row("resign lock active unlock", elsewhere);
        row("resign lock unlock active", elsewhere);
        row("lock resign active unlock", locked);
        row("lock displayOff unlock displayOn", locked);
        row("sleep lock resign wake active unlock", asleep);
    }
    void whoLeavesIsNotRecordedAndWhoReturnsIs()
    {
        QFETCH(QStringList, events);
        QFETCH(QString, status);
        start();
        for (const QString& event : std::as_const(events)) {
            happens(event);
            QCOMPARE(recorder().isRecording(), !m_isAway);
            if (m_isAway)
                QCOMPARE(recorder().status(), status);
        }
        QVERIFY(recorder().isRecording());
        QVERIFY(!recorder().stoppedForAway());
    }

    void whoDoesNotWantItBackStaysUnrecorded_data()
    {
        whoLeavesIsNotRecordedAndWhoReturnsIs_data();
    }
    void whoDoesNotWantItBackStaysUnrecorded()
    {
        QFETCH(QStringList, events);
        QFETCH(QString, status);
        m_rig->preferences.setResumesAfterAway(false);
        start();
        for (const QString& event : std::as_const(events))
            happens(event);
        QVERIFY(!recorder().isRecording());
        QVERIFY(!recorder().stoppedForAway());
        QCOMPARE(recorder().status(), status);
    }

    void whoNoLongerWantsItBackStaysUnrecorded()
    {
        start();
        happens(u"lock"_s);
        m_rig->preferences.setResumesAfterAway(false);
        happens(u"unlock"_s);
        QVERIFY(!recorder().isRecording());
        QVERIFY(!recorder().stoppedForAway());
        m_rig->preferences.setResumesAfterAway(true);
        happens(u"unlock"_s);
        QVERIFY(!recorder().isRecording());
    }

    void recordingComesBackASecondAndAHalfAfterTheReturn()
    {
        start();
        happens(u"lock"_s);
        m_rig->state.isLockedNow = false;
        m_rig->sessionEvents.tell(ReturnEvent(ReturnEvent::ScreenUnlocked));
        settle();
        m_rig->clock.advance(kUntilSettled - 0.01);
        settle();
        QVERIFY(!recorder().isRecording());
        m_rig->clock.advance(0.01);
        settle();
        QVERIFY(recorder().isRecording());
    }

    void whatIsOffStaysOff()
    {
        for (const char* event : {"sleep", "wake", "lock", "unlock", "resign", "active"})
            happens(QString::fromLatin1(event));
        QVERIFY(!recorder().isRecording());
        QVERIFY(!recorder().stoppedForAway());
        QCOMPARE(recorder().status(), u"Recording is off"_s);
    }

    void anUnknownSessionCountsAsTheOneInFront()
    {
        start();
        happens(u"sleep"_s);
        m_rig->sessionEvents.isOnConsoleNow.reset();
        happens(u"wake"_s);
        QVERIFY(recorder().isRecording());
    }

    void aPassThatFindsTheScreenLockedCountsAsLeaving()
    {
        start();
        m_rig->state.isLockedNow = true;
        nextPass();
        QVERIFY(!recorder().isRecording());
        QCOMPARE(recorder().status(), u"Paused when the screen locked"_s);
        QVERIFY(recorder().stoppedForAway());
        happens(u"lock"_s);
        happens(u"unlock"_s);
        QVERIFY(recorder().isRecording());
    }

    void aReturnWithoutThePermissionDoesNotAskForIt()
    {
        start();
        happens(u"lock"_s);
        m_rig->screen.isAllowedNow = false;
        happens(u"unlock"_s);
        QVERIFY(!recorder().isRecording());
        QCOMPARE(recorder().status(),
                 u"Recording did not start: screen recording is not allowed"_s);
        QVERIFY(!recorder().askedForPermission());
        m_rig->screen.isAllowedNow = true;
        happens(u"unlock"_s);
        QVERIFY(!recorder().isRecording());
    }

    void theUsersHandWinsOverAway()
    {
        start();
        happens(u"lock"_s);
        recorder().toggleRecording();
        QVERIFY(!recorder().stoppedForAway());
        m_rig->state.isLockedNow = false;
        settle();
        recorder().toggleRecording();
        QVERIFY(!recorder().isRecording());
        happens(u"unlock"_s);
        QVERIFY(!recorder().isRecording());
    }

    void aPauseEndsAtItsDate_data()
    {
        QTest::addColumn<int>("length");
        QTest::addColumn<double>("seconds");
        QTest::newRow("15 minutes") << int{PauseLength::FifteenMinutes} << 900.0;
        QTest::newRow("1 hour") << int{PauseLength::OneHour} << 3600.0;
        QTest::newRow("until morning") << int{PauseLength::UntilMorning} << 23 * 3600.0 + 900;
    }
    void aPauseEndsAtItsDate()
    {
        QFETCH(int, length);
        QFETCH(double, seconds);
        start();
        QSignalSpy changes(&m_model->timedPause(), &TimedPause::pausedUntilChanged);
        m_model->pauses().pause(static_cast<PauseLength::Case>(length));
        settle();
        QVERIFY(!recorder().isRecording());
        QCOMPARE(m_model->timedPause().pausedUntil(), std::optional(kMorning + seconds));
        const QString time = m_rig->surroundings().calendar().shortTime(kMorning + seconds);
        QCOMPARE(recorder().status(), u"Paused until "_s + time);
        QCOMPARE(m_rig->preferences.pausedUntil(), std::optional(kMorning + seconds));
        QVERIFY(!recorder().nextCaptureAt());
        QCOMPARE(changes.size(), 1);

        pass(seconds - 0.5);
        QVERIFY(!recorder().isRecording());
        pass(0.5);
        QVERIFY(recorder().isRecording());
        QVERIFY(!m_model->timedPause().isPaused());
        QVERIFY(!m_rig->preferences.pausedUntil());
        QCOMPARE(changes.size(), 2);
    }

    void whoHearsOfAPauseMayStartAgain()
    {
        start();
        QObject::connect(&recorder(), &Recorder::isRecordingChanged, &recorder(), [this] {
            if (!recorder().isRecording())
                recorder().toggleRecording();
        });
        m_model->pauses().pause(PauseLength::OneHour);
        settle();
        QVERIFY(recorder().isRecording());
        QVERIFY(!m_model->timedPause().isPaused());
        QVERIFY(!m_rig->preferences.pausedUntil());
        QVERIFY(recorder().nextCaptureAt());
    }

    void aPauseIsSaidInOneLine()
    {
        start();
        QStringList lines;
        QObject::connect(&recorder(), &Recorder::statusChanged, &recorder(),
                         [&] { lines.append(recorder().status()); });
        m_model->pauses().pause(PauseLength::OneHour);
        settle();
        QCOMPARE(lines.size(), 1);
        QVERIFY(lines.first().startsWith(u"Paused until "_s));
    }

    void whoIsAboutToQuitStartsNothing_data()
    {
        QTest::addColumn<bool>("isPause");
        QTest::newRow("at the end of a pause") << true;
        QTest::newRow("at a return") << false;
    }
    void whoIsAboutToQuitStartsNothing()
    {
        QFETCH(bool, isPause);
        start();
        if (isPause)
            m_model->pauses().pause(PauseLength::OneHour);
        else
            happens(u"lock"_s);
        settle();
        m_model->prepareToQuit();
        m_rig->state.isLockedNow = false;
        happens(u"unlock"_s);
        pass(4000);
        QVERIFY(!recorder().isRecording());
        QCOMPARE(m_rig->preferences.pausedUntil().has_value(), isPause);
    }

    void severalReturnsStartOneRecording()
    {
        start();
        happens(u"lock"_s);
        happens(u"sleep"_s);
        m_rig->state.isLockedNow = false;
        m_rig->state.isAsleepNow = false;
        QSignalSpy changes(&recorder(), &Recorder::isRecordingChanged);
        for (const ReturnEvent event : ReturnEvent::kAllCases)
            m_rig->sessionEvents.tell(event);
        settle();
        QCOMPARE(m_rig->clock.sleepers(), std::size_t(4));
        pass(kUntilSettled);
        QVERIFY(recorder().isRecording());
        QCOMPARE(changes.size(), 1);
    }

    void whoLeavesAgainAtOnceIsNotRecorded()
    {
        start();
        happens(u"lock"_s);
        m_rig->state.isLockedNow = false;
        m_rig->sessionEvents.tell(ReturnEvent(ReturnEvent::ScreenUnlocked));
        settle();
        m_rig->clock.advance(1);
        m_rig->state.isLockedNow = true;
        m_rig->sessionEvents.tell(InactivityEvent(InactivityEvent::ScreenLocked));
        settle();
        pass(kUntilSettled);
        QVERIFY(!recorder().isRecording());
        QVERIFY(recorder().stoppedForAway());
        happens(u"unlock"_s);
        QVERIFY(recorder().isRecording());
    }

    void theModelMayGoWhileAReturnIsAwaited()
    {
        start();
        happens(u"lock"_s);
        m_rig->sessionEvents.tell(ReturnEvent(ReturnEvent::ScreenUnlocked));
        settle();
        m_rig->sessionEvents.tell(ReturnEvent(ReturnEvent::Wake));
        m_model.reset();
        QCoreApplication::processEvents();
        QCOMPARE(m_rig->clock.sleepers(), std::size_t(0));
        m_rig->clock.advance(10);
        launch();
    }

    void whatIsOffCannotBePaused()
    {
        m_model->pauses().pause(PauseLength::OneHour);
        QVERIFY(!m_model->timedPause().isPaused());
        QVERIFY(!m_rig->preferences.pausedUntil());
        QCOMPARE(recorder().status(), u"Recording is off"_s);
    }

    void aClockThatIsSetForwardEndsAPauseWithinAMinute()
    {
        start();
        m_model->pauses().pause(PauseLength::OneHour);
        settle();
        m_rig->clock.advance(30);
        m_rig->clock.setNow(kMorning + 4000);
        settle();
        QVERIFY(!recorder().isRecording());
        pass(30);
        QVERIFY(recorder().isRecording());
    }

    void aClockThatIsSetBackMakesAPauseLonger()
    {
        start();
        m_model->pauses().pause(PauseLength::FifteenMinutes);
        settle();
        m_rig->clock.setNow(kMorning - 600);
        pass(900);
        QVERIFY(!recorder().isRecording());
        pass(600);
        QVERIFY(recorder().isRecording());
    }

    void sleepDuringAPauseChangesNothing()
    {
        start();
        m_model->pauses().pause(PauseLength::OneHour);
        settle();
        const QString status = recorder().status();
        for (const char* event : {"sleep", "lock", "wake", "unlock"})
            happens(QString::fromLatin1(event));
        QVERIFY(!recorder().isRecording());
        QVERIFY(!recorder().stoppedForAway());
        QCOMPARE(recorder().status(), status);
        pass(3600);
        QVERIFY(recorder().isRecording());
    }

    void whoStartsRecordingEndsThePause()
    {
        start();
        m_model->pauses().pause(PauseLength::OneHour);
        settle();
        recorder().toggleRecording();
        settle();
        QVERIFY(recorder().isRecording());
        QVERIFY(!m_model->timedPause().isPaused());
        QVERIFY(!m_rig->preferences.pausedUntil());
        recorder().stop();
        pass(7200);
        QVERIFY(!recorder().isRecording());
    }

    void aPauseThatIsCancelledStartsNothing()
    {
        start();
        m_model->pauses().cancelTimedPause();
        QVERIFY(recorder().isRecording());
        m_model->pauses().pause(PauseLength::OneHour);
        settle();
        m_model->pauses().cancelTimedPause();
        QCOMPARE(recorder().status(), u"Recording is off"_s);
        QVERIFY(!m_model->timedPause().isPaused());
        QVERIFY(!m_rig->preferences.pausedUntil());
        QCOMPARE(m_rig->clock.sleepers(), std::size_t(0));
        pass(7200);
        QVERIFY(!recorder().isRecording());
        m_model->pauses().cancelTimedPause();
        QCOMPARE(recorder().status(), u"Recording is off"_s);
    }

    void theEndOfAPauseMayAskForThePermission()
    {
        start();
        m_model->pauses().pause(PauseLength::OneHour);
        settle();
        m_rig->screen.isAllowedNow = false;
        pass(3600);
        QVERIFY(!recorder().isRecording());
        QVERIFY(recorder().askedForPermission());
        QVERIFY(!m_model->timedPause().isPaused());
        QCOMPARE(recorder().status(), u"Recording is off"_s);
    }

    void aPauseOutlivesARestart()
    {
        start();
        m_model->pauses().pause(PauseLength::OneHour);
        settle();
        m_rig->preferences.setRecordsAtLaunch(true);
        // As another process reads it.
        QCOMPARE(Preferences(m_rig->preferences.path()).pausedUntil(),
                 std::optional(kMorning + 3600));
        launch();
        m_rig->clock.advance(600);
        m_model->finishedLaunching();
        settle();
        QVERIFY(!recorder().isRecording());
        QCOMPARE(m_model->timedPause().pausedUntil(), std::optional(kMorning + 3600));
        QVERIFY(recorder().status().startsWith(u"Paused until "_s));
        pass(3000);
        QVERIFY(recorder().isRecording());
    }

    void aStoredPauseThatIsOverIsForgotten_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::newRow("over") << QVariant(u"2023-11-15T08:44:59.999Z"_s);
        QTest::newRow("over this moment") << QVariant(u"2023-11-15T08:45:00.000Z"_s);
        QTest::newRow("no date") << QVariant(u"tomorrow"_s);
        QTest::newRow("a number") << QVariant(4e9);
        QTest::newRow("a list") << QVariant(QStringList{u"2099-01-01T00:00:00.000Z"_s, u"2"_s});
        QTest::newRow("nothing") << QVariant();
    }
    void aStoredPauseThatIsOverIsForgotten()
    {
        QFETCH(QVariant, stored);
        for (const bool recordsAtLaunch : {false, true}) {
            m_model.reset();
            m_rig = std::make_unique<RecorderRig>(false);
            {
                QSettings file(m_rig->folder.filePath(u"stored.ini"_s), QSettings::IniFormat);
                file.setValue(u"pausedUntil"_s, stored);
                file.setValue(u"recordsAtLaunch"_s, recordsAtLaunch);
            }
            Preferences preferences(m_rig->folder.filePath(u"stored.ini"_s));
            Surroundings surroundings = m_rig->surroundings();
            m_rig->clock.setNow(kMorning);
            AppModel model({.clock = surroundings.clock,
                            .calendar = surroundings.calendar,
                            .screen = surroundings.screen,
                            .frontApplication = surroundings.frontApplication,
                            .screenState = surroundings.screenState,
                            .secureInput = surroundings.secureInput,
                            .sessionEvents = surroundings.sessionEvents,
                            .addresses = surroundings.addresses,
                            .applicationChooser = surroundings.applicationChooser,
                            .recognizer = surroundings.recognizer,
                            .preferences = preferences},
                           OpenedLibrary::at(m_rig->libraryRoot(), nullptr));
            model.finishedLaunching();
            QVERIFY(!model.timedPause().isPaused());
            QCOMPARE(model.recorder().isRecording(), recordsAtLaunch);
            const QSettings file(preferences.path(), QSettings::IniFormat);
            QVERIFY(!file.contains(u"pausedUntil"_s));
        }
    }

private:
    void launch()
    {
        m_model.reset();
        m_isAway = false;
        m_model = std::make_unique<AppModel>(m_rig->surroundings(),
                                             OpenedLibrary::at(m_rig->libraryRoot(), nullptr));
    }

    Recorder& recorder() { return m_model->recorder(); }

    void settle()
    {
        const bool isQuiet = QTest::qWaitFor([this] {
            return !recorder().isCapturing() &&
                   (!recorder().isRecording() || m_rig->clock.sleepers() > 0);
        });
        QVERIFY2(isQuiet, "a capture pass did not come to its end");
        for (int turn = 0; turn < 3; ++turn)
            QCoreApplication::processEvents();
    }

    void start()
    {
        recorder().toggleRecording();
        settle();
        QVERIFY(recorder().isRecording());
    }

    void nextPass()
    {
        m_rig->clock.advance(m_rig->preferences.interval());
        settle();
    }

    /// Lets so many seconds pass.
    void pass(double seconds)
    {
        m_rig->clock.advance(seconds);
        settle();
    }

    /// Something happens to the desktop, it is told, and its consequences come.
    void happens(const QString& event)
    {
        const FakeSessionEvents& session = m_rig->sessionEvents;
        if (event == u"lock"_s) {
            m_rig->state.isLockedNow = true;
            session.tell(InactivityEvent(InactivityEvent::ScreenLocked));
        } else if (event == u"unlock"_s) {
            m_rig->state.isLockedNow = false;
            session.tell(ReturnEvent(ReturnEvent::ScreenUnlocked));
        } else if (event == u"sleep"_s) {
            m_rig->state.isAsleepNow = true;
            session.tell(InactivityEvent(InactivityEvent::Sleep));
        } else if (event == u"wake"_s) {
            m_rig->state.isAsleepNow = false;
            session.tell(ReturnEvent(ReturnEvent::Wake));
        } else if (event == u"resign"_s) {
            m_rig->sessionEvents.isOnConsoleNow = false;
            session.tell(InactivityEvent(InactivityEvent::SessionResigned));
        } else if (event == u"active"_s) {
            m_rig->sessionEvents.isOnConsoleNow = true;
            session.tell(ReturnEvent(ReturnEvent::SessionActive));
        } else if (event == u"displayOff"_s) {
            m_rig->state.isAsleepNow = true;
        } else if (event == u"displayOn"_s) {
            m_rig->state.isAsleepNow = false;
            session.tell(ReturnEvent(ReturnEvent::ScreensWake));
        } else {
            QFAIL(qPrintable(event));
        }
        const bool isLeaving = event == u"lock"_s || event == u"sleep"_s || event == u"resign"_s;
        const bool isThere = !m_rig->state.isLockedNow && !m_rig->state.isAsleepNow &&
                             m_rig->sessionEvents.isOnConsoleNow != false;
        m_isAway = isLeaving || (m_isAway && !isThere);
        settle();
        pass(kUntilSettled);
    }

    std::unique_ptr<RecorderRig> m_rig;
    std::unique_ptr<AppModel> m_model;
    bool m_isAway = false;
};

QTEST_GUILESS_MAIN(PausesTest)
#include "PausesTest.moc"
