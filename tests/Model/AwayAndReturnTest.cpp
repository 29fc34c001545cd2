// SPDX-License-Identifier: Apache-2.0
//
// Away and return, in the whole model with the desktop told.
#include "tests/Model/PausesRig.h"

#include <QSignalSpy>

#include <thread>

using namespace mossbank;
using namespace Qt::StringLiterals;

class AwayAndReturnTest : public QObject, PausesRig {
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

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
        for (const char* event : {"unlock", "wake", "active"})
            happens(QString::fromLatin1(event));
        QVERIFY(!recorder().isRecording());
        start();
        nextPass();
        QVERIFY2(recorder().isRecording(), "the user's hand starts it");
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

    // The main thread waits meanwhile: a center has no lock of its own.
    void whatIsToldOnAnotherThreadIsActedOnInTheMainOne()
    {
        start();
        QList<QThread*> threads;
        QObject guard;
        QObject::connect(
            &recorder(), &Recorder::isRecordingChanged, &guard,
            [&] { threads.append(QThread::currentThread()); }, Qt::DirectConnection);
        const FakeSessionEvents& session = m_rig->sessionEvents;

        m_rig->state.isLockedNow = true;
        std::thread([&] { session.tell(InactivityEvent(InactivityEvent::ScreenLocked)); }).join();
        QVERIFY(threads.isEmpty());
        settle();
        QCOMPARE(threads, QList<QThread*>{thread()});
        QVERIFY(!recorder().isRecording());
        QCOMPARE(recorder().status(), u"Paused when the screen locked"_s);

        m_rig->state.isLockedNow = false;
        std::thread([&] { session.tell(ReturnEvent(ReturnEvent::ScreenUnlocked)); }).join();
        // Would begin a job that the other thread had made.
        QCoreApplication::sendPostedEvents(QCoreApplication::instance());
        QCOMPARE(m_rig->clock.sleepers(), std::size_t(0));
        settle();
        QCOMPARE(m_rig->clock.sleepers(), std::size_t(1));
        pass(kUntilSettled);
        QCOMPARE(threads, (QList<QThread*>{thread(), thread()}));
        QVERIFY(recorder().isRecording());
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
};

QTEST_GUILESS_MAIN(AwayAndReturnTest)
#include "AwayAndReturnTest.moc"
