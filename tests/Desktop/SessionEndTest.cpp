// SPDX-License-Identifier: Apache-2.0
//
// The real program at the end of the session: nobody is asked anything, and what is stored for the
// next start stays. What only looks like an end leaves the user's own quit a question.
#include "tests/Desktop/CalledMossbank.h"
#include "tests/Desktop/MockedCalls.h"
#include "tests/Desktop/MockedSession.h"
#include "tests/Desktop/SessionManager.h"

#include <QFile>
#include <QTest>

#include <unistd.h>

#include <csignal>
#include <limits>
#include <memory>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

const QString kRecords = u"Waiting for your next screen"_s;
const QString kPauses = u"Paused until "_s;
const QString kQuestion = u"Mossbank is recording"_s;
const QString kQuit = u"quit"_s;
const QString kPause = u"pausedUntil"_s;

/// As the protocol of session managers counts.
const QString kNeverAgain = u"3"_s;

constexpr int kPatience = 20'000;

/// What the process has had of the processor. Nothing where there is no such process.
double secondsOfWork(qint64 process)
{
    QFile file(u"/proc/%1/stat"_s.arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return std::numeric_limits<double>::quiet_NaN();
    // Behind the name, which may hold anything.
    const QList<QByteArray> fields =
        QByteArray(file.readAll()).split(')').constLast().trimmed().split(' ');
    constexpr int kOwn = 11;
    constexpr int kSystems = 12;
    return (fields.value(kOwn).toDouble() + fields.value(kSystems).toDouble()) /
           static_cast<double>(::sysconf(_SC_CLK_TCK));
}

} // namespace

class SessionEndTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<TestBus> m_systemBus;
    std::unique_ptr<BusConnection> m_system;
    std::unique_ptr<MockedLogind> m_logind;
    std::unique_ptr<SessionManager> m_manager;
    std::unique_ptr<CalledMossbank> m_called;

    RunningMossbank& mossbank() { return m_called->mossbank(); }

    bool startRecording()
    {
        return m_called->start(kRecords) && m_called->waitUntilFound() &&
               m_called->waitForAnotherPicture();
    }
    bool startPausing(const QString& until)
    {
        m_called->choose({{kPause, until}});
        return m_called->start(kPauses) && m_called->waitUntilFound();
    }

    bool isAsked()
    {
        const quint32 question = m_called->window(kQuestion);
        return question != 0 && m_called->waitUntilActive(question);
    }

    /// The end came at once, and nothing that was saved is half there.
    void compareEnd()
    {
        QCOMPARE(mossbank().waitForEnd(), 0);
        QCOMPARE(mossbank().rows().size(), mossbank().pictureFiles().size());
    }

    /// logind tells whether the machine is about to go off, and the program has heard it.
    bool tellOfShutdown(bool isBeginning)
    {
        const auto questions = [this] {
            return mockedCalls(*m_system, u"org.freedesktop.login1"_s, MockedLogind::managerPath(),
                               u"GetSessionByPID"_s);
        };
        const qsizetype before = questions();
        // What it says no longer has it asked anew: after what was said before.
        return m_logind->emitSignal(u"PrepareForShutdown"_s, u"b"_s, isBeginning) &&
               m_logind->invalidate(u"LockedHint"_s) &&
               QTest::qWaitFor([&] { return questions() > before; }, kPatience);
    }

    bool joinManager()
    {
        m_manager = std::make_unique<SessionManager>();
        mossbank().setVariable(u"SESSION_MANAGER"_s, m_manager->address());
        if (!m_manager->problem().isEmpty())
            qWarning("%s", qPrintable(m_manager->problem()));
        return m_manager->problem().isEmpty();
    }

private Q_SLOTS:
    void initTestCase() { qunsetenv("XDG_SESSION_ID"); }

    void init()
    {
        m_systemBus = std::make_unique<TestBus>(TestBus::Kind::System);
        QVERIFY2(m_systemBus->problem().isEmpty(), qPrintable(m_systemBus->problem()));
        m_system = std::make_unique<BusConnection>(QDBusConnection::SystemBus);
        m_logind = std::make_unique<MockedLogind>(*m_systemBus);
        QVERIFY2(m_logind->problem().isEmpty(), qPrintable(m_logind->problem()));
        m_called = std::make_unique<CalledMossbank>();
        QVERIFY2(m_called->problem().isEmpty(), qPrintable(m_called->problem()));
    }
    void cleanup()
    {
        m_called.reset();
        m_manager.reset();
        m_logind.reset();
        m_system.reset();
        m_systemBus.reset();
    }

    void whenTheMachineGoesOffNothingIsAsked_data()
    {
        QTest::addColumn<bool>("byQuit");
        QTest::newRow("it is told to quit") << true;
        QTest::newRow("it is sent SIGTERM") << false;
    }
    void whenTheMachineGoesOffNothingIsAsked()
    {
        QFETCH(bool, byQuit);
        QVERIFY(startRecording());
        QVERIFY(tellOfShutdown(true));
        if (byQuit)
            QVERIFY(m_called->ask(kQuit));
        else
            QCOMPARE(::kill(static_cast<pid_t>(mossbank().process()), SIGTERM), 0);
        compareEnd();
    }

    void whenTheMachineGoesOffThePauseStays_data() { whenTheMachineGoesOffNothingIsAsked_data(); }
    void whenTheMachineGoesOffThePauseStays()
    {
        QFETCH(bool, byQuit);
        const QString until = inSeconds(3600);
        QVERIFY(startPausing(until));
        QVERIFY(tellOfShutdown(true));
        if (byQuit)
            QVERIFY(m_called->ask(kQuit));
        else
            QCOMPARE(::kill(static_cast<pid_t>(mossbank().process()), SIGTERM), 0);
        compareEnd();
        QCOMPARE(mossbank().choice(kPause), until);
    }

    void whenItDoesNotGoOffTheUserIsAskedAsEver()
    {
        QVERIFY(startRecording());
        QVERIFY(tellOfShutdown(false));
        QVERIFY(m_called->ask(kQuit));
        QVERIFY(isAsked());
        // The session may end while the question stands there.
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void theSessionManagerEndsIt_data()
    {
        QTest::addColumn<QStringList>("orders");
        QTest::newRow("after it has saved itself") << QStringList{u"end"_s};
        QTest::newRow("after it has saved what all see") << QStringList{u"end what all see"_s};
        // As long after it has that it counts no more.
        QTest::newRow("long after, or without that") << QStringList();
        QTest::newRow("after a save that was for no end")
            << QStringList{u"checkpoint"_s, u"go on"_s};
    }
    void theSessionManagerEndsIt()
    {
        QFETCH(QStringList, orders);
        const QString until = inSeconds(3600);
        for (const bool pauses : {false, true}) {
            QVERIFY(joinManager());
            QVERIFY(pauses ? startPausing(until) : startRecording());
            QVERIFY(m_manager->waitFor(u"saved"_s));
            for (const QString& order : orders)
                m_manager->order(order);
            QVERIFY(m_manager->waitFor(u"saved"_s, orders.isEmpty() ? 1 : 2));
            m_manager->order(u"die"_s);
            compareEnd();
            QCOMPARE(mossbank().choice(kPause), pauses ? until : QString());
        }
    }

    void theSessionManagerEndsItWhileTheUserIsAsked()
    {
        QVERIFY(joinManager());
        QVERIFY(startRecording());
        QVERIFY(m_called->ask(kQuit));
        QVERIFY(isAsked());
        m_manager->order(u"die"_s);
        compareEnd();
    }

    void whatIsNoEndLeavesTheUserAQuestion_data()
    {
        QTest::addColumn<QStringList>("orders");
        QTest::newRow("it joins") << QStringList();
        QTest::newRow("a save in between") << QStringList{u"checkpoint"_s, u"go on"_s};
        QTest::newRow("an end that is called off") << QStringList{u"end"_s, u"call off"_s};
    }
    void whatIsNoEndLeavesTheUserAQuestion()
    {
        QFETCH(QStringList, orders);
        QVERIFY(joinManager());
        QVERIFY(startRecording());
        QVERIFY(m_manager->waitFor(u"saved"_s));
        for (const QString& order : orders)
            m_manager->order(order);
        QVERIFY(m_manager->waitFor(u"saved"_s, orders.isEmpty() ? 1 : 2));
        QVERIFY(m_called->waitForAnotherPicture());
        QVERIFY(m_called->ask(kQuit));
        QVERIFY(isAsked());
        QVERIFY(m_called->press(u"Escape"_s));
        QVERIFY(m_called->waitUntilNoWindow());
        QVERIFY(m_called->waitForAnotherPicture());
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void itIsNotStartedAgainWithTheSession_data()
    {
        QTest::addColumn<QString>("order");
        QTest::newRow("it joins") << QString();
        QTest::newRow("a save in between") << u"checkpoint"_s;
        QTest::newRow("the end") << u"end"_s;
        QTest::newRow("the end, and what all see") << u"end what all see"_s;
    }
    void itIsNotStartedAgainWithTheSession()
    {
        QFETCH(QString, order);
        QVERIFY(joinManager());
        QVERIFY(startRecording());
        QVERIFY(m_manager->waitFor(u"saved"_s));
        if (!order.isEmpty()) {
            m_manager->order(order);
            QVERIFY(m_manager->waitFor(u"saved"_s, 2));
        }
        QCOMPARE(m_manager->restartHint(), kNeverAgain);
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void aSessionManagerThatDiesLeavesItAtRest()
    {
        constexpr int kMilliseconds = 1500;
        m_called->choose({{u"recordsAtLaunch"_s, u"false"_s}});
        QVERIFY(joinManager());
        QVERIFY(m_called->start(u"Recording is off"_s) && m_called->waitUntilFound());
        QVERIFY(m_manager->waitFor(u"saved"_s));
        m_manager->kill();
        QTest::qWait(kMilliseconds / 2);
        const double before = secondsOfWork(mossbank().process());
        QTest::qWait(kMilliseconds);
        const double worked = secondsOfWork(mossbank().process()) - before;
        QVERIFY2(worked < kMilliseconds / 4000.0, qPrintable(QString::number(worked)));
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void aSessionManagerThatDiesItselfIsNoEnd()
    {
        QVERIFY(joinManager());
        QVERIFY(startRecording());
        QVERIFY(m_manager->waitFor(u"saved"_s));
        m_manager->kill();
        QVERIFY(m_called->waitForAnotherPicture());
        QVERIFY(m_called->waitForAnotherPicture());
        QVERIFY(m_called->ask(kQuit));
        QVERIFY(isAsked());
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }
};

QTEST_GUILESS_MAIN(SessionEndTest)
#include "SessionEndTest.moc"
