// SPDX-License-Identifier: Apache-2.0
//
// The end of the program: who is asked first, and what the next start finds.
#include "Mossbank/Model/QuitGuard.h"

#include "tests/Model/RecorderRig.h"

#include <QSignalSpy>

using namespace mossbank;
using namespace Qt::StringLiterals;
using Cause = QuitGuard::Cause;

Q_DECLARE_METATYPE(QuitGuard::Cause)

class QuitGuardTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_rig = std::make_unique<RecorderRig>();
        m_guard = std::make_unique<QuitGuard>(m_rig->surroundings(), *m_rig->recorder);
        m_terminations = std::make_unique<QSignalSpy>(m_guard.get(), &QuitGuard::terminates);
    }
    void cleanup()
    {
        m_terminations.reset();
        m_guard.reset();
        m_rig.reset();
    }

    void onlyWhoQuitsByHandWhileRecordingIsAsked_data()
    {
        QTest::addColumn<Cause>("cause");
        QTest::addColumn<bool>("isRecording");
        QTest::addColumn<bool>("isExpected");
        QTest::addColumn<bool>("isAsked");
        QTest::addColumn<bool>("isForgotten");
        QTest::newRow("a menu, recording") << Cause::User << true << false << true << false;
        QTest::newRow("a menu, off") << Cause::User << false << false << false << true;
        QTest::newRow("a menu, expected") << Cause::User << true << true << false << false;
        QTest::newRow("interrupt, recording") << Cause::Interrupt << true << false << false << true;
        QTest::newRow("interrupt, off") << Cause::Interrupt << false << false << false << true;
        QTest::newRow("interrupt, expected") << Cause::Interrupt << true << true << false << false;
        QTest::newRow("logout, recording") << Cause::Session << true << false << false << false;
        QTest::newRow("logout, off") << Cause::Session << false << false << false << false;
    }
    void onlyWhoQuitsByHandWhileRecordingIsAsked()
    {
        QFETCH(Cause, cause);
        QFETCH(bool, isRecording);
        QFETCH(bool, isExpected);
        QFETCH(bool, isAsked);
        QFETCH(bool, isForgotten);
        if (isRecording)
            m_rig->start();
        storeSomething();
        if (isExpected)
            m_guard->expectQuit();
        m_guard->quit(cause);
        settle();
        QCOMPARE(m_rig->quitQuestion.timesShown, isAsked ? 1 : 0);
        QCOMPARE(m_terminations->count(), isAsked ? 0 : 1);
        QCOMPARE(isSomethingStored(), !isForgotten);
    }

    void keepRecordingKeepsEverything()
    {
        m_rig->start();
        storeSomething();
        m_guard->quit(Cause::User);
        settle();
        m_rig->quitQuestion.answer(false);
        settle();
        QCOMPARE(m_terminations->count(), 0);
        QVERIFY(m_rig->recorder->isRecording());
        QVERIFY(isSomethingStored());
        // And the next one is asked again.
        m_guard->quit(Cause::User);
        settle();
        QCOMPARE(m_rig->quitQuestion.timesShown, 2);
    }

    void whoMeansItEndsItAndNothingComesBackByItself()
    {
        m_rig->start();
        storeSomething();
        m_guard->quit(Cause::User);
        settle();
        m_rig->quitQuestion.answer(true);
        settle();
        QCOMPARE(m_terminations->count(), 1);
        QVERIFY(!isSomethingStored());
    }

    void whoQuitsTwiceIsAskedOnce()
    {
        m_rig->start();
        m_guard->quit(Cause::User);
        settle();
        m_guard->quit(Cause::User);
        settle();
        // Shown again, and it is the first that waits for the answer.
        QCOMPARE(m_rig->quitQuestion.timesShown, 2);
        QVERIFY(m_rig->quitQuestion.isOpen());
        m_rig->quitQuestion.answer(true);
        settle();
        QCOMPARE(m_terminations->count(), 1);
    }

    void whoQuitsTwiceAtOnceIsAskedOnceAndHeard()
    {
        m_rig->start();
        m_guard->quit(Cause::User);
        m_guard->quit(Cause::User);
        settle();
        QCOMPARE(m_rig->quitQuestion.timesShown, 1);
        m_rig->quitQuestion.answer(true);
        settle();
        QCOMPARE(m_terminations->count(), 1);
    }

    void anEndUnderWayIsFinal()
    {
        m_rig->start();
        storeSomething();
        m_guard->quit(Cause::User);
        settle();
        m_guard->quit(Cause::Session);
        // The window of the question goes with the program; until then it can be pressed.
        m_rig->quitQuestion.answer(true);
        m_guard->quit(Cause::Interrupt);
        m_guard->quit(Cause::User);
        settle();
        QCOMPARE(m_terminations->count(), 1);
        QVERIFY2(isSomethingStored(), "it is the session that ends");
    }

    void theSessionEndsAlsoWhileTheQuestionIsOpen()
    {
        m_rig->start();
        storeSomething();
        m_guard->quit(Cause::User);
        settle();
        m_guard->quit(Cause::Session);
        QCOMPARE(m_terminations->count(), 1);
        QVERIFY(isSomethingStored());
    }

    void whereNobodyCanBeAskedTheUsersWordCounts()
    {
        m_rig->quitQuestion.isBroken = true;
        m_rig->start();
        m_guard->quit(Cause::User);
        settle();
        QCOMPARE(m_terminations->count(), 1);
    }

    void anEndIsExpectedForAMinute_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<bool>("isAsked");
        QTest::newRow("just in time") << 59.9 << false;
        QTest::newRow("too late") << 60.0 << true;
    }
    void anEndIsExpectedForAMinute()
    {
        QFETCH(double, seconds);
        QFETCH(bool, isAsked);
        m_rig->start();
        QVERIFY(!m_guard->quitExpectedUntil());
        m_guard->expectQuit();
        QCOMPARE(m_guard->quitExpectedUntil(), std::optional(m_rig->clock.now() + 60));
        m_rig->clock.advance(seconds);
        m_guard->quit(Cause::User);
        settle();
        QCOMPARE(m_terminations->count(), isAsked ? 0 : 1);
        QCOMPARE(m_rig->quitQuestion.timesShown, isAsked ? 1 : 0);
    }

private:
    void settle()
    {
        for (int turn = 0; turn < 5; ++turn)
            QCoreApplication::processEvents();
    }

    void storeSomething()
    {
        m_rig->preferences.setPausedUntil(Date{1'700'037'900});
        m_rig->preferences.setRecordsAfterRelaunch(Date{1'700'037'900});
    }

    bool isSomethingStored() const
    {
        const bool isPause = m_rig->preferences.pausedUntil().has_value();
        if (m_rig->preferences.recordsAfterRelaunch().has_value() != isPause)
            qFatal("one of the two only");
        return isPause;
    }

    std::unique_ptr<RecorderRig> m_rig;
    std::unique_ptr<QuitGuard> m_guard;
    std::unique_ptr<QSignalSpy> m_terminations;
};

QTEST_GUILESS_MAIN(QuitGuardTest)
#include "QuitGuardTest.moc"
