// SPDX-License-Identifier: Apache-2.0
//
// Pauses for a while, in the whole model with the desktop told.
#include "tests/Model/PausesRig.h"

#include <QSettings>
#include <QSignalSpy>

using namespace mossbank;
using namespace Qt::StringLiterals;

class TimedPauseTest : public QObject, PausesRig {
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

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
        m_model->quitGuard().quit(QuitGuard::Cause::Session);
        m_rig->state.isLockedNow = false;
        happens(u"unlock"_s);
        pass(4000);
        QVERIFY(!recorder().isRecording());
        QCOMPARE(m_rig->preferences.pausedUntil().has_value(), isPause);
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

    void aPauseThatEndsWithoutALibraryLeavesRecordingOff()
    {
        m_model.reset();
        m_rig->preferences.setPausedUntil(kMorning + 3600);
        QVERIFY(QDir(m_rig->libraryRoot()).removeRecursively());
        QFile blocking(m_rig->libraryRoot());
        QVERIFY(blocking.open(QIODevice::WriteOnly));
        launch();
        QVERIFY(!m_model->store());
        m_model->finishedLaunching();
        settle();
        QCOMPARE(m_model->timedPause().pausedUntil(), std::optional(kMorning + 3600));
        QVERIFY(recorder().status().startsWith(u"Paused until "_s));
        QVERIFY(
            QSettings(m_rig->preferences.path(), QSettings::IniFormat).contains(u"pausedUntil"_s));
        pass(3600);
        QVERIFY(!recorder().isRecording());
        QVERIFY(!m_model->timedPause().isPaused());
        QCOMPARE(recorder().status(), u"Recording is off"_s);
        QVERIFY(
            !QSettings(m_rig->preferences.path(), QSettings::IniFormat).contains(u"pausedUntil"_s));
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
            m_rig->clock.setNow(kMorning);
            AppModel model(m_rig->surroundings(preferences),
                           OpenedLibrary::at(m_rig->libraryRoot(), nullptr));
            model.finishedLaunching();
            QVERIFY(!model.timedPause().isPaused());
            QCOMPARE(model.recorder().isRecording(), recordsAtLaunch);
            const QSettings file(preferences.path(), QSettings::IniFormat);
            QVERIFY(!file.contains(u"pausedUntil"_s));
        }
    }
};

QTEST_GUILESS_MAIN(TimedPauseTest)
#include "TimedPauseTest.moc"
