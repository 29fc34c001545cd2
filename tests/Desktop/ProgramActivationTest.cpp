// SPDX-License-Identifier: Apache-2.0
//
// How starts of the program, and the desktop, reach the one that runs: on a real session bus.
#include "Mossbank/Platform/Linux/ActivationService.h"
#include "tests/Contract/Contract.h"
#include "tests/Desktop/CalledActivationTest.h"
#include "tests/Desktop/MockedCalls.h"
#include "tests/Desktop/MockedSession.h"

#include <QCoreApplication>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <future>
#include <memory>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class ProgramActivationTest final : public CalledActivationTest {
    Q_OBJECT

private Q_SLOTS:
    void thePathFollowsFromTheIdentity()
    {
        QCOMPARE(applicationPath(u"local.mossbank.Mossbank"_s), u"/local/mossbank/Mossbank"_s);
        QCOMPARE(applicationPath(kIdentity), kPath);
    }

    void theDesktopHasItShowItself_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QVariantList>("arguments");
        const QVariantMap data = {{u"desktop-startup-id"_s, u"shell_TIME1"_s}};
        QTest::newRow("Activate") << u"Activate"_s << QVariantList{data};
        QTest::newRow("Open") << u"Open"_s << QVariantList{QStringList{u"file:///etc"_s}, data};
    }
    void theDesktopHasItShowItself()
    {
        QFETCH(QString, method);
        QFETCH(QVariantList, arguments);
        QVERIFY(listen());
        QCOMPARE(ask(method, arguments), QString());
        QTRY_COMPARE(m_activations, 1);
        QCOMPARE(m_actions, QStringList());
    }

    void theActionThatIsKnownIsTold()
    {
        QVERIFY(listen());
        const auto act = [this](const QString& action, const QVariantList& parameters = {}) {
            return ask(u"ActivateAction"_s, {action, parameters, QVariantMap()});
        };
        const QVariantList one = {QVariant::fromValue(QDBusVariant(1))};
        for (const QString& action : {u""_s, u"Quit"_s, u"quit\n"_s, u"delete-all"_s})
            QCOMPARE(act(action), QString());
        QCOMPARE(act(u"quit"_s, one), QString());
        QTest::qWait(kLongEnough);
        QCOMPARE(m_actions, QStringList());
        QCOMPARE(act(u"quit"_s), QString());
        QTRY_COMPARE(m_actions, QStringList{u"quit"_s});
        QCOMPARE(m_activations, 0);
    }

    void anotherProgramOfTheNameIsNotMeant()
    {
        MockedService another(*m_bus, QDBusConnection::SessionBus, kIdentity, kPath,
                              {u"--session"_s, kIdentity, kPath, kInterface});
        QVERIFY2(another.problem().isEmpty(), qPrintable(another.problem()));
        QVERIFY(another.mock(kPath, u"AddMethod"_s,
                             {kInterface, u"Activate"_s, u"a{sv}"_s, u""_s, u""_s}));
        const qint64 own = QCoreApplication::applicationPid();
        QVERIFY(!activateFirst(own, 500ms));
        // One in line behind it can be reached all the same.
        m_first = std::make_unique<BusActivation>(kIdentity);
        connect(m_first.get(), &ProgramActivation::activated, this, [this] { ++m_activations; });
        m_first->listen();
        QVERIFY(activateFirst(own, 10s));
        QTRY_COMPARE(m_activations, 1);
        QVERIFY(m_first->availability().isAvailable);
        QCOMPARE(mockedCalls(*m_other, kIdentity, kPath, u"Activate"_s), 0);
        // And is the next.
        QVERIFY(activateFirst(another.process().processId(), 10s));
        QCOMPARE(mockedCalls(*m_other, kIdentity, kPath, u"Activate"_s), 1);
        const QString before = owner();
        TestBus::end(another.process());
        QVERIFY(
            QTest::qWaitFor([&] { return !owner().isEmpty() && owner() != before; }, kPatience));
        QCOMPARE(ask(u"Activate"_s, {QVariantMap()}), QString());
        QTRY_COMPARE(m_activations, 2);
    }

    void aFirstThatStandsStillIsNotWaitedForForLong()
    {
        MockedService first(*m_bus, QDBusConnection::SessionBus, kIdentity, kPath,
                            {u"--session"_s, kIdentity, kPath, kInterface});
        QVERIFY2(first.problem().isEmpty(), qPrintable(first.problem()));
        QVERIFY(first.mock(kPath, u"AddMethod"_s,
                           {kInterface, u"Activate"_s, u"a{sv}"_s, u""_s, u""_s}));
        const qint64 process = first.process().processId();
        QVERIFY(activateFirst(process, 10s));
        ::kill(static_cast<pid_t>(process), SIGSTOP);
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!activateFirst(process, 500ms));
        QVERIFY2(timer.elapsed() < 10'000, qPrintable(QString::number(timer.elapsed())));
    }

    void aFirstThatIsStillStartingIsReached()
    {
        auto answer = std::async(std::launch::async, [] {
            return BusActivation(kIdentity, 10s).activateFirst(QCoreApplication::applicationPid());
        });
        QTest::qWait(kLongEnough);
        QVERIFY(listen());
        QVERIFY(QTest::qWaitFor([&] { return answer.wait_for(0s) == std::future_status::ready; },
                                kPatience));
        QVERIFY(answer.get());
        QTRY_COMPARE(m_activations, 1);
    }

    void aBusThatComesBackFindsItThere()
    {
        QVERIFY(listen());
        m_other.reset();
        TestBus::end(m_bus->process());
        QTRY_VERIFY(!m_first->availability().isAvailable);
        QVERIFY(isSound(m_first->availability()));
        m_bus.reset();
        m_bus = std::make_unique<TestBus>(TestBus::Kind::Session);
        QVERIFY2(m_bus->problem().isEmpty(), qPrintable(m_bus->problem()));
        m_other = std::make_unique<BusConnection>(QDBusConnection::SessionBus);
        QTRY_VERIFY_WITH_TIMEOUT(m_first->availability().isAvailable, kPatience);
        QCOMPARE(ask(u"Activate"_s, {QVariantMap()}), QString());
        QTRY_COMPARE(m_activations, 1);
    }

    void withoutABusItSaysSo_data()
    {
        QTest::addColumn<QByteArray>("address");
        QTest::addColumn<QString>("reason");
        const QString consequence =
            u" Starting Mossbank again cannot bring its window to the front."_s;
        QTest::newRow("none") << QByteArray() << u"There is no session bus."_s + consequence;
        QTest::newRow("one that is not there")
            << QByteArray("unix:path=/nowhere/bus")
            << u"The session bus does not answer."_s + consequence;
        QTest::newRow("nonsense") << QByteArray("nonsense")
                                  << u"The session bus does not answer."_s + consequence;
    }
    void withoutABusItSaysSo()
    {
        QFETCH(QByteArray, address);
        QFETCH(QString, reason);
        const QTemporaryDir runtime;
        const QByteArray before = qgetenv("XDG_RUNTIME_DIR");
        qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());
        qputenv("DBUS_SESSION_BUS_ADDRESS", address);
        m_first = std::make_unique<BusActivation>(kIdentity, 60s);
        m_first->listen();
        QTRY_COMPARE(m_first->availability(), Availability::missing(reason));
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!m_first->activateFirst(1));
        QVERIFY2(timer.elapsed() < 30'000, "there is nothing to wait for");
        qputenv("XDG_RUNTIME_DIR", before);
    }

    void aBusThatStandsStillHoldsNobodyUp()
    {
        m_other.reset();
        ::kill(static_cast<pid_t>(m_bus->process().processId()), SIGSTOP);
        QElapsedTimer timer;
        timer.start();
        m_first = std::make_unique<BusActivation>(kIdentity, 500ms);
        connect(m_first.get(), &ProgramActivation::activated, this, [this] { ++m_activations; });
        m_first->listen();
        QVERIFY(!m_first->activateFirst(1));
        QVERIFY2(timer.elapsed() < 4000, qPrintable(QString::number(timer.elapsed())));
        QVERIFY(QTest::qWaitFor([&] { return !m_first->availability().isAvailable; }, kPatience));
        ::kill(static_cast<pid_t>(m_bus->process().processId()), SIGCONT);
        m_other = std::make_unique<BusConnection>(QDBusConnection::SessionBus);
        QTRY_VERIFY_WITH_TIMEOUT(m_first->availability().isAvailable, kPatience);
        QCOMPARE(ask(u"Activate"_s, {QVariantMap()}), QString());
        QTRY_COMPARE(m_activations, 1);
    }

    void onceItHasGoneItsNameIsFree()
    {
        QVERIFY(listen());
        m_first.reset();
        QVERIFY(QTest::qWaitFor([&] { return owner().isEmpty(); }, kPatience));
    }

    void itMayGoAtAnyTime()
    {
        for (int turns = 0; turns < 30; ++turns) {
            BusActivation brief(kIdentity);
            brief.listen();
            for (int turn = 0; turn < turns; ++turn)
                QCoreApplication::processEvents();
        }
        QTest::qWait(kLongEnough);
        QVERIFY(QTest::qWaitFor([&] { return owner().isEmpty(); }, kPatience));
    }

private:
    static bool activateFirst(qint64 process, std::chrono::milliseconds patience)
    {
        auto answer = std::async(std::launch::async, [=] {
            return BusActivation(kIdentity, patience).activateFirst(process);
        });
        return QTest::qWaitFor([&] { return answer.wait_for(0s) == std::future_status::ready; },
                               kPatience) &&
               answer.get();
    }
};

QTEST_GUILESS_MAIN(ProgramActivationTest)
#include "ProgramActivationTest.moc"
