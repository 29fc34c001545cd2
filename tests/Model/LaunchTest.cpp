// SPDX-License-Identifier: Apache-2.0
//
// What brings recording back, and how far a new user has come.
#include "Mossbank/Model/Launch.h"

#include "MossbankCore/Library/LibraryStats.h"
#include "tests/Model/PausesRig.h"

#include <QSignalSpy>

using namespace mossbank;
using namespace Qt::StringLiterals;
using FirstRun = Launch::FirstRun;

namespace {

const QString kIdle = u"Recording is off"_s;

} // namespace

Q_DECLARE_METATYPE(Launch::FirstRun)

class LaunchTest : public QObject, PausesRig {
    Q_OBJECT

    enum Stamp { NoStamp, FreshStamp, OldStamp };
    enum Pause { NoPause, RunningPause, EndedPause };

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    // All that can bring recording back, in every combination.
    void whatBringsRecordingBack_data()
    {
        QTest::addColumn<int>("pause");
        QTest::addColumn<int>("stamp");
        QTest::addColumn<bool>("recordsAtLaunch");
        for (const int pause : {NoPause, RunningPause, EndedPause}) {
            for (const int stamp : {NoStamp, FreshStamp, OldStamp}) {
                for (const bool recordsAtLaunch : {false, true}) {
                    QTest::addRow("pause %d, stamp %d, records at launch %d", pause, stamp,
                                  recordsAtLaunch)
                        << pause << stamp << recordsAtLaunch;
                }
            }
        }
    }
    void whatBringsRecordingBack()
    {
        QFETCH(int, pause);
        QFETCH(int, stamp);
        QFETCH(bool, recordsAtLaunch);
        m_rig->preferences.setRecordsAtLaunch(recordsAtLaunch);
        if (pause != NoPause)
            m_rig->preferences.setPausedUntil(kMorning + (pause == RunningPause ? 600 : -1));
        if (stamp != NoStamp)
            m_rig->preferences.setRecordsAfterRelaunch(kMorning - (stamp == FreshStamp ? 20 : 200));
        m_model->finishedLaunching();
        settle();

        const bool isPaused = pause == RunningPause;
        const bool comesBack = !isPaused && (recordsAtLaunch || stamp == FreshStamp);
        QCOMPARE(recorder().isRecording(), comesBack);
        QCOMPARE(m_model->timedPause().isPaused(), isPaused);
        QCOMPARE(m_rig->preferences.pausedUntil().has_value(), isPaused);
        // It is used up, whatever came of it.
        QVERIFY(!m_rig->preferences.recordsAfterRelaunch());
    }

    void aStampCountsForThreeMinutes_data()
    {
        QTest::addColumn<double>("secondsAgo");
        QTest::addColumn<bool>("comesBack");
        QTest::newRow("just now") << 0.0 << true;
        QTest::newRow("in time") << 179.9 << true;
        QTest::newRow("too late") << 180.0 << false;
        // The clock was set back meanwhile.
        QTest::newRow("in the future") << -179.9 << true;
        QTest::newRow("far in the future") << -180.0 << false;
    }
    void aStampCountsForThreeMinutes()
    {
        QFETCH(double, secondsAgo);
        QFETCH(bool, comesBack);
        m_rig->preferences.setRecordsAfterRelaunch(kMorning - secondsAgo);
        m_model->finishedLaunching();
        settle();
        QCOMPARE(recorder().isRecording(), comesBack);
    }

    void withoutPermissionNobodyIsAskedAtLaunch()
    {
        m_rig->screen.isAllowedNow = false;
        m_rig->preferences.setRecordsAtLaunch(true);
        m_model->finishedLaunching();
        settle();
        QVERIFY(!recorder().isRecording());
        QVERIFY(!recorder().askedForPermission());
        QCOMPARE(recorder().status(),
                 u"Recording did not start: screen recording is not allowed"_s);
    }

    void anUpdateThatRelaunchesBringsRecordingBack()
    {
        start();
        m_model->launch().prepareForRelaunch();
        QCOMPARE(m_rig->preferences.recordsAfterRelaunch(), std::optional(kMorning));
        quitAndLaunch();
        QVERIFY(recorder().isRecording());
        QVERIFY(!m_rig->preferences.recordsAfterRelaunch());
    }

    void nobodyIsAskedWhetherAnUpdateIsMeant()
    {
        start();
        m_model->launch().prepareForRelaunch();
        QSignalSpy ready(m_model.get(), &AppModel::readyToQuit);
        m_model->quitGuard().quit(QuitGuard::Cause::User);
        settle();
        QTRY_COMPARE(ready.count(), 1);
        QCOMPARE(m_rig->quitQuestion.timesShown, 0);
        QCOMPARE(m_rig->preferences.recordsAfterRelaunch(), std::optional(kMorning));
    }

    void anUpdateWhileRecordingIsOffBringsNothingBack()
    {
        m_model->launch().prepareForRelaunch();
        QVERIFY(!m_rig->preferences.recordsAfterRelaunch());
        quitAndLaunch();
        QVERIFY(!recorder().isRecording());
    }

    void aPauseOutlivesAnUpdate()
    {
        start();
        m_model->pauses().pause(PauseLength::OneHour);
        m_model->launch().prepareForRelaunch();
        quitAndLaunch();
        QVERIFY(!recorder().isRecording());
        QVERIFY(m_model->timedPause().isPaused());
    }

    void whoStopsBeforeTheRelaunchStaysStopped()
    {
        start();
        m_model->launch().prepareForRelaunch();
        recorder().toggleRecording();
        QVERIFY(!m_rig->preferences.recordsAfterRelaunch());
        quitAndLaunch();
        QVERIFY(!recorder().isRecording());
    }

    void thePowerGoesOffUnasked()
    {
        start();
        QSignalSpy ready(m_model.get(), &AppModel::readyToQuit);
        m_rig->sessionEvents.workspace().post(u"NSWorkspaceWillPowerOffNotification"_s);
        pass(59);
        m_model->quitGuard().quit(QuitGuard::Cause::User);
        settle();
        QCOMPARE(m_rig->quitQuestion.timesShown, 0);
        QTRY_COMPARE(ready.count(), 1);
    }

    void whoIsGoneIsNotToldOfThePower()
    {
        m_model.reset();
        m_rig->sessionEvents.workspace().post(u"NSWorkspaceWillPowerOffNotification"_s);
    }

    void aQuitByTheUserEndsAPauseForGood()
    {
        start();
        m_model->pauses().pause(PauseLength::OneHour);
        m_model->quitGuard().quit(QuitGuard::Cause::Interrupt);
        QVERIFY(!m_rig->preferences.pausedUntil());
        launch();
        m_model->finishedLaunching();
        settle();
        QVERIFY(!m_model->timedPause().isPaused());
        QCOMPARE(recorder().status(), kIdle);
    }

    void aLogoutKeepsAPause()
    {
        start();
        m_model->pauses().pause(PauseLength::OneHour);
        quitAndLaunch();
        QVERIFY(m_model->timedPause().isPaused());
        QVERIFY(recorder().status().startsWith(u"Paused until "_s));
    }

    void reopeningHasAnotherTakeOver_data()
    {
        QTest::addColumn<bool>("isBroken");
        QTest::newRow("another one starts") << false;
        QTest::newRow("no other one starts") << true;
    }
    void reopeningHasAnotherTakeOver()
    {
        QFETCH(bool, isBroken);
        if (isBroken)
            m_rig->relauncher.failure = u"No process."_s;
        QSignalSpy ready(m_model.get(), &AppModel::readyToQuit);
        m_rig->preferences.setPausedUntil(kMorning + 600);
        m_model->launch().reopen();
        QCOMPARE(m_rig->relauncher.opened, isBroken ? 0 : 1);
        QCOMPARE(ready.count(), 1);
        QVERIFY2(m_rig->preferences.pausedUntil(), "the user has not quit");
    }

    void reopeningAsksNothingAlsoWhileRecording()
    {
        start();
        QSignalSpy ready(m_model.get(), &AppModel::readyToQuit);
        m_model->launch().reopen();
        QCOMPARE(m_rig->relauncher.opened, 1);
        settle();
        QTRY_COMPARE(ready.count(), 1);
        QCOMPARE(m_rig->quitQuestion.timesShown, 0);
    }

    void howFarANewUserHasCome_data()
    {
        QTest::addColumn<qsizetype>("count");
        QTest::addColumn<bool>("isAllowed");
        QTest::addColumn<bool>("hasAsked");
        QTest::addColumn<bool>("isRecording");
        QTest::addColumn<FirstRun>("firstRun");
        const qsizetype none = 0;
        const qsizetype one = 1;
        QTest::newRow("not allowed") << none << false << false << false << FirstRun::Permission;
        QTest::newRow("asked") << none << false << true << false << FirstRun::Permission;
        QTest::newRow("asked and allowed") << none << true << true << false << FirstRun::Reopen;
        QTest::newRow("allowed") << none << true << false << false << FirstRun::Ready;
        QTest::newRow("recording") << none << true << false << true << FirstRun::Waiting;
        QTest::newRow("one is there") << one << true << false << false << FirstRun::Done;
        QTest::newRow("one is there, no more allowed")
            << one << false << true << false << FirstRun::Done;
    }
    void howFarANewUserHasCome()
    {
        QFETCH(qsizetype, count);
        QFETCH(bool, isAllowed);
        QFETCH(bool, hasAsked);
        QFETCH(bool, isRecording);
        QFETCH(FirstRun, firstRun);
        if (hasAsked) {
            m_rig->screen.isAllowedNow = false;
            recorder().toggleRecording();
        }
        m_rig->screen.isAllowedNow = isAllowed;
        if (isRecording)
            start();
        LibraryStats stats;
        stats.count = count;
        QCOMPARE(m_model->launch().firstRun(stats), firstRun);
    }

    void aLoginItemTakenOffElsewhereIsSeenOnReturn()
    {
        m_rig->preferences.setOpensAtLogin(true);
        m_rig->preferences.setOpensAtLoginPath(m_rig->loginService.path());
        m_rig->loginService.statusNow = LoginService::Status::Enabled;
        m_model->finishedLaunching();
        QCOMPARE(m_model->loginItem().state(), LoginItem::State::On);
        m_rig->loginService.statusNow = LoginService::Status::NotRegistered;
        QSignalSpy looking(&m_model->launch(), &Launch::systemMayHaveChanged);
        m_model->launch().becameActive();
        QCOMPARE(looking.count(), 1);
        QCOMPARE(m_model->loginItem().state(), LoginItem::State::Off);
        QVERIFY(!m_rig->preferences.opensAtLogin());
    }

    void choicesThatCannotBeReadAreNotWrittenOverByALaunch()
    {
        const QString path = m_rig->folder.filePath(u"broken.ini"_s);
        const QByteArray broken = "[General]\nexcludedBundles=\"a.b\nopensAtLogin=true\n";
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(broken);
        file.close();
        m_rig->loginService.statusNow = LoginService::Status::Enabled;
        for (int launches = 0; launches < 2; ++launches) {
            Preferences preferences(path);
            QVERIFY(!preferences.isReadable());
            AppModel model(m_rig->surroundings(preferences),
                           OpenedLibrary::at(m_rig->libraryRoot(), nullptr));
            model.finishedLaunching();
            m_rig->loginService.statusNow = LoginService::Status::NotRegistered;
            model.launch().becameActive();
            settle();
        }
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), broken);
        QVERIFY(m_rig->loginService.calls.isEmpty());
    }

    void aCopyThatHasMovedIsRegisteredAtLaunch()
    {
        m_rig->preferences.setOpensAtLogin(true);
        m_rig->preferences.setOpensAtLoginPath(u"/home/heron/mossbank"_s);
        m_model->finishedLaunching();
        QCOMPARE(m_rig->loginService.calls, QStringList{u"register"_s});
        QCOMPARE(m_rig->preferences.opensAtLoginPath(), m_rig->loginService.path());
        QCOMPARE(m_model->loginItem().state(), LoginItem::State::On);
    }

    void theWindowIsShownOnlyWhereNoneIs()
    {
        Launch& launch = m_model->launch();
        QVERIFY(launch.handleReopen(false));
        int timesShown = 0;
        launch.setReopenHandler([&] { ++timesShown; });
        QVERIFY(launch.handleReopen(true));
        QCOMPARE(timesShown, 0);
        QVERIFY(!launch.handleReopen(false));
        QCOMPARE(timesShown, 1);
    }

    void windowsAreLightOrDarkAsChosen()
    {
        using Mode = Appearance::Mode;
        m_rig->preferences.setAppearanceMode(u"dark"_s);
        m_model->finishedLaunching();
        for (const auto& mode : {u"light"_s, u"system"_s, u"sepia"_s, u"dark"_s})
            m_rig->preferences.setAppearanceMode(mode);
        QList<Mode> applied = m_rig->appearance.applied;
        QCOMPARE(applied.takeLast(), Mode::Dark);
        QCOMPARE(applied.takeLast(), Mode::System);
        QCOMPARE(applied.takeLast(), Mode::System);
        QCOMPARE(applied.takeLast(), Mode::Light);
        QCOMPARE(applied.takeLast(), Mode::Dark);
    }

    void withTheSampleLibraryNothingOfTheSystemIsTouched()
    {
        Preferences sample{Preferences::Sample{}};
        m_rig->loginService.statusNow = LoginService::Status::Enabled;
        OpenedLibrary library = OpenedLibrary::at(m_rig->libraryRoot(), nullptr);
        library.sample.isEmpty = true;
        AppModel model(m_rig->surroundings(sample), std::move(library));
        sample.setRecordsAtLaunch(true);
        sample.setAppearanceMode(u"dark"_s);
        model.finishedLaunching();
        settle();
        QVERIFY(m_rig->loginService.calls.isEmpty());
        QCOMPARE(model.loginItem().state(), LoginItem::State::Off);
        QVERIFY(m_rig->appearance.applied.isEmpty());
        model.recorder().toggleRecording();
        QVERIFY(!model.recorder().isRecording());
        QCOMPARE(model.recorder().status(), kIdle);
        model.launch().prepareForRelaunch();
        QSignalSpy ready(&model, &AppModel::readyToQuit);
        model.quitGuard().quit(QuitGuard::Cause::User);
        QCOMPARE(ready.count(), 1);
    }

    // This program has no fonts.
    void aSampleLibraryThatCannotBePaintedIsTold()
    {
        Preferences sample{Preferences::Sample{}};
        AppModel model(m_rig->surroundings(sample),
                       OpenedLibrary::at(m_rig->libraryRoot(), nullptr));
        QSignalSpy listed(&model.launch(), &Launch::listed);
        model.finishedLaunching();
        QTRY_COMPARE(listed.count(), 1);
        QCOMPARE(model.recorder().status(),
                 u"Could not prepare sample history: The sample pictures cannot be painted."_s);
        QCOMPARE(model.listing().stats().count, 0);
    }

private:
    /// As when an update or the desktop ends the program and starts it again.
    void quitAndLaunch()
    {
        QSignalSpy ready(m_model.get(), &AppModel::readyToQuit);
        m_model->quitGuard().quit(QuitGuard::Cause::Session);
        QTRY_COMPARE(ready.count(), 1);
        launch();
        m_model->finishedLaunching();
        settle();
    }
};

QTEST_GUILESS_MAIN(LaunchTest)
#include "LaunchTest.moc"
