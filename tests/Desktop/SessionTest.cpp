// SPDX-License-Identifier: Apache-2.0
//
// What logind and the screen saver tell of the user's leaving and return.
#include "Mossbank/Platform/Linux/SessionWatch.h"
#include "MossbankCore/Capture/InactivityMonitor.h"
#include "tests/Contract/Contract.h"
#include "tests/Desktop/MockedSession.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <QDBusVariant>
#include <QElapsedTimer>
#include <QTest>

#include <csignal>
#include <memory>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

const QString kSleep = InactivityEvent(InactivityEvent::Sleep).name();
const QString kResigned = InactivityEvent(InactivityEvent::SessionResigned).name();
const QString kLocked = InactivityEvent(InactivityEvent::ScreenLocked).name();
const QString kWake = ReturnEvent(ReturnEvent::Wake).name();
const QString kActive = ReturnEvent(ReturnEvent::SessionActive).name();
const QString kUnlocked = ReturnEvent(ReturnEvent::ScreenUnlocked).name();

} // namespace

class SessionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qunsetenv("XDG_SESSION_ID"); }

    void init()
    {
        m_told.clear();
        m_desktop =
            std::make_unique<VirtualDesktop>(VirtualDesktop::Options{.hasWindowManager = false});
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
        m_systemBus = std::make_unique<TestBus>(TestBus::Kind::System);
        QVERIFY2(m_systemBus->problem().isEmpty(), qPrintable(m_systemBus->problem()));
        m_sessionBus = std::make_unique<TestBus>(TestBus::Kind::Session);
        QVERIFY2(m_sessionBus->problem().isEmpty(), qPrintable(m_sessionBus->problem()));
    }

    void cleanup()
    {
        m_monitor.reset();
        m_state.reset();
        m_events.reset();
        m_logind.reset();
        m_screenSaver.reset();
        m_sessionBus.reset();
        m_systemBus.reset();
        m_desktop.reset();
        qunsetenv("XDG_SESSION_ID");
    }

    void theSessionIsFound_data()
    {
        QTest::addColumn<QByteArray>("id");
        QTest::newRow("by its process") << QByteArray();
        QTest::newRow("by its name") << QByteArray("c1");
        QTest::newRow("by its process where the name is another's") << QByteArray("c2");
    }
    void theSessionIsFound()
    {
        QFETCH(QByteArray, id);
        QVERIFY(startLogind());
        if (!id.isEmpty())
            qputenv("XDG_SESSION_ID", id);
        QVERIFY(m_logind->setLocked(true));
        watch();
        QVERIFY(m_state->isLocked());
        QVERIFY(m_events->isOnConsole().has_value());
        QVERIFY(isSound(m_events->availability()));
    }

    void theSessionOfAServiceOfTheUsersIsFound_data()
    {
        QTest::addColumn<QByteArray>("id");
        QTest::newRow("without a name") << QByteArray();
        QTest::newRow("with the name of one that has ended") << QByteArray("c2");
    }
    void theSessionOfAServiceOfTheUsersIsFound()
    {
        QFETCH(QByteArray, id);
        QVERIFY(startLogind());
        QVERIFY(m_logind->knowItAsTheUsersOnly());
        if (!id.isEmpty())
            qputenv("XDG_SESSION_ID", id);
        QVERIFY(m_logind->setLocked(true));
        watch();
        QVERIFY(m_state->isLocked());
        QVERIFY(m_events->isOnConsole().has_value());
    }

    void logindTellsOfTheLock()
    {
        QVERIFY(startLogind());
        watch();
        QVERIFY(m_state->availability().isAvailable);
        QVERIFY(m_events->availability().isAvailable);
        QVERIFY(!m_state->isLocked());
        QVERIFY(m_logind->setLocked(true));
        QTRY_COMPARE(m_told, QStringList{kLocked});
        QVERIFY(m_state->isLocked());
        QVERIFY(m_logind->setLocked(false));
        QTRY_COMPARE(m_told, (QStringList{kLocked, kUnlocked}));
        QVERIFY(!m_state->isLocked());
    }

    void aLockThatWasThereBeforeIsKnown()
    {
        QVERIFY(startLogind());
        QVERIFY(m_logind->setLocked(true));
        watch();
        QVERIFY(m_state->isLocked());
        QVERIFY(m_logind->setLocked(false));
        QTRY_COMPARE(m_told, QStringList{kUnlocked});
    }

    void theScreenSaverTellsOfTheLock()
    {
        QVERIFY(startScreenSaver());
        watch();
        QVERIFY(m_state->availability().isAvailable);
        QVERIFY(!m_events->availability().isAvailable);
        QVERIFY(!m_state->isLocked());
        QVERIFY(m_screenSaver->setActive(true));
        QTRY_COMPARE(m_told, QStringList{kLocked});
        QVERIFY(m_state->isLocked());
        QVERIFY(m_screenSaver->setActive(false));
        QTRY_COMPARE(m_told, (QStringList{kLocked, kUnlocked}));
    }

    void aScreenSaverThatWasActiveBeforeIsKnown()
    {
        QVERIFY(startScreenSaver());
        QVERIFY(m_screenSaver->setActive(true));
        watch();
        QVERIFY(m_state->isLocked());
    }

    void everyDesktopsScreenSaverIsHeard_data()
    {
        QTest::addColumn<QString>("service");
        QTest::addColumn<QString>("path");
        const auto row = [](const QString& service, const QString& path) {
            QTest::newRow(qPrintable(service + path)) << service << path;
        };
        for (const char* desktop : {"freedesktop", "cinnamon", "mate", "xfce"}) {
            const QString name = QString::fromLatin1(desktop);
            row(u"org.%1.ScreenSaver"_s.arg(name), u"/org/%1/ScreenSaver"_s.arg(name));
        }
        // It answers at the one and tells at the other.
        row(u"org.freedesktop.ScreenSaver"_s, u"/ScreenSaver"_s);
    }
    void everyDesktopsScreenSaverIsHeard()
    {
        QFETCH(QString, service);
        QFETCH(QString, path);
        MockedService saver(*m_sessionBus, QDBusConnection::SessionBus, service, path,
                            {u"--session"_s, service, path, service});
        QVERIFY2(saver.problem().isEmpty(), qPrintable(saver.problem()));
        watch();
        const auto tell = [&](bool isActive) {
            return saver.mock(path, u"EmitSignal"_s,
                              {service, u"ActiveChanged"_s, u"b"_s,
                               QVariantList{QVariant::fromValue(QDBusVariant(isActive))}});
        };
        QVERIFY(tell(true));
        QTRY_COMPARE(m_told, QStringList{kLocked});
        QVERIFY(m_state->isLocked());
        QVERIFY(tell(false));
        QTRY_COMPARE(m_told, (QStringList{kLocked, kUnlocked}));
    }

    void eitherOfTheTwoLocksAndBothUnlock()
    {
        QVERIFY(startLogind());
        QVERIFY(startScreenSaver());
        watch();
        QVERIFY(m_screenSaver->setActive(true));
        QTRY_COMPARE(m_told, QStringList{kLocked});
        QVERIFY(m_logind->setLocked(true));
        QVERIFY(m_screenSaver->setActive(false));
        QTest::qWait(kLongEnough);
        QVERIFY(m_state->isLocked());
        QCOMPARE(m_told, QStringList{kLocked});
        QVERIFY(m_logind->setLocked(false));
        QTRY_COMPARE(m_told, (QStringList{kLocked, kUnlocked}));
        QVERIFY(!m_state->isLocked());
    }

    void logindTellsOfSleepAndOfTheSession()
    {
        QVERIFY(startLogind());
        watch();
        QCOMPARE(m_events->isOnConsole(), std::optional(true));
        QVERIFY(m_logind->sleep(true));
        QTRY_COMPARE(m_told, QStringList{kSleep});
        QVERIFY(m_logind->sleep(false));
        QTRY_COMPARE(m_told, (QStringList{kSleep, kWake}));
        m_told.clear();
        QVERIFY(m_logind->setActive(false));
        QTRY_COMPARE(m_told, QStringList{kResigned});
        QCOMPARE(m_events->isOnConsole(), std::optional(false));
        QVERIFY(m_logind->setActive(true));
        QTRY_COMPARE(m_told, (QStringList{kResigned, kActive}));
        QCOMPARE(m_events->isOnConsole(), std::optional(true));
    }

    void aLogindThatGoesAndComesBackIsHeardAgain()
    {
        QVERIFY(startLogind());
        watch();
        QVERIFY(m_logind->setLocked(true));
        QTRY_COMPARE(m_told, QStringList{kLocked});
        m_logind.reset();
        QTRY_VERIFY(!m_events->availability().isAvailable);
        // Who was away stays away until told otherwise.
        QVERIFY(m_state->isLocked());
        QVERIFY(startLogind());
        QTRY_VERIFY(m_events->availability().isAvailable);
        QTRY_COMPARE(m_told, (QStringList{kLocked, kUnlocked}));
        QVERIFY(m_logind->setActive(false));
        QTRY_COMPARE(m_told, (QStringList{kLocked, kUnlocked, kResigned}));
    }

    void aLogindThatComesLateIsHeard()
    {
        watch();
        QVERIFY(!m_events->availability().isAvailable);
        QVERIFY(!m_events->isOnConsole());
        QVERIFY(startLogind());
        QTRY_VERIFY(m_events->availability().isAvailable);
        QVERIFY(m_logind->setLocked(true));
        QTRY_VERIFY(m_told.contains(kLocked));
    }

    void aScreenSaverThatEndsCoversNothing()
    {
        QVERIFY(startScreenSaver());
        watch();
        QVERIFY(m_screenSaver->setActive(true));
        QTRY_COMPARE(m_told, QStringList{kLocked});
        m_screenSaver.reset();
        QTRY_VERIFY(!m_state->availability().isAvailable);
        // It may be on its way back.
        QVERIFY(m_state->isLocked());
        QTRY_COMPARE_WITH_TIMEOUT(m_told, (QStringList{kLocked, kUnlocked}), 15'000);
        QVERIFY(startScreenSaver());
        QTRY_VERIFY(m_state->availability().isAvailable);
        QVERIFY(m_screenSaver->setActive(true));
        QTRY_VERIFY(m_state->isLocked());
    }

    void withoutAnyBusNothingIsKnownAndNothingFails()
    {
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere");
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
        watch();
        QVERIFY(isSound(m_state->availability()));
        QVERIFY(!m_state->availability().isAvailable);
        QVERIFY(!m_events->availability().isAvailable);
        QVERIFY(!m_state->isLocked());
        QVERIFY(!m_state->isMainDisplayAsleep());
        QVERIFY(!m_events->isOnConsole());
    }

    void busesThatEndTakeNothingWithThem()
    {
        QVERIFY(startLogind());
        QVERIFY(startScreenSaver());
        watch();
        TestBus::end(m_systemBus->process());
        TestBus::end(m_sessionBus->process());
        QTest::qWait(kLongEnough);
        QVERIFY(!m_state->isLocked());
        QVERIFY(!m_state->isMainDisplayAsleep());
    }

    void servicesThatStandStillAreNotWaitedFor()
    {
        QVERIFY(startLogind());
        QVERIFY(startScreenSaver());
        ::kill(static_cast<pid_t>(m_logind->process().processId()), SIGSTOP);
        ::kill(static_cast<pid_t>(m_screenSaver->process().processId()), SIGSTOP);
        QElapsedTimer timer;
        timer.start();
        watch();
        QVERIFY2(timer.elapsed() < 2000, qPrintable(QString::number(timer.elapsed())));
        timer.restart();
        for (int i = 0; i < 100; ++i)
            QVERIFY(!m_state->isLocked());
        QVERIFY2(timer.elapsed() < 100, qPrintable(QString::number(timer.elapsed())));
        // Once they go on they are heard.
        QVERIFY(!m_events->availability().isAvailable);
        ::kill(static_cast<pid_t>(m_logind->process().processId()), SIGCONT);
        ::kill(static_cast<pid_t>(m_screenSaver->process().processId()), SIGCONT);
        QTRY_VERIFY_WITH_TIMEOUT(m_events->availability().isAvailable, 15'000);
        QVERIFY(m_logind->setLocked(true));
        QTRY_VERIFY(m_state->isLocked());
    }

    void aLockOfABusThatEndsDoesNotStandForEver()
    {
        QVERIFY(startLogind());
        QVERIFY(m_logind->setLocked(true));
        watch();
        QVERIFY(m_state->isLocked());
        TestBus::end(m_systemBus->process());
        QTRY_VERIFY(!m_state->isLocked());
        QVERIFY(!m_state->availability().isAvailable);
        QVERIFY(!m_events->isOnConsole());
    }

    void onTheWayToSleepTheDisplayCountsAsAsleep()
    {
        QVERIFY(startLogind());
        watch();
        QVERIFY(m_logind->sleep(true));
        QTRY_COMPARE(m_told, QStringList{kSleep});
        QVERIFY(m_state->isMainDisplayAsleep());
        QVERIFY(m_logind->sleep(false));
        QTRY_COMPARE(m_told, (QStringList{kSleep, kWake}));
        QVERIFY(!m_state->isMainDisplayAsleep());
    }

    void aWakeThatNobodyToldIsFoundOut()
    {
        QVERIFY(startLogind());
        watch();
        QVERIFY(m_logind->sleep(true));
        QTRY_COMPARE(m_told, QStringList{kSleep});
        m_logind.reset();
        QVERIFY(m_state->isMainDisplayAsleep());
        QVERIFY(startLogind());
        QTRY_COMPARE(m_told, (QStringList{kSleep, kWake}));
        QVERIFY(!m_state->isMainDisplayAsleep());
    }

    void aWakeThatIsNotAnsweredForAtFirstIsAskedForAgain()
    {
        QVERIFY(startLogind());
        watch();
        QVERIFY(m_logind->sleep(true));
        QTRY_COMPARE(m_told, QStringList{kSleep});
        m_logind.reset();
        // A word in place of yes or no.
        QVERIFY(startLogind(uR"({"PreparingForSleep": "perhaps"})"_s));
        QTRY_VERIFY(m_events->availability().isAvailable);
        QTest::qWait(kLongEnough);
        QVERIFY2(m_state->isMainDisplayAsleep(), "nobody has said otherwise");
        QVERIFY(m_logind->knowOfSleep(false));
        QTRY_COMPARE_WITH_TIMEOUT(m_told, (QStringList{kSleep, kWake}), 8000);
        QVERIFY(!m_state->isMainDisplayAsleep());
    }

    void whatLogindSaysInAnotherTypeIsNotHeard()
    {
        QVERIFY(startLogind());
        QVERIFY(m_logind->tell(u"LockedHint"_s, u"true"_s));
        QVERIFY(m_logind->tell(u"Active"_s, 0));
        watch();
        QVERIFY(m_events->availability().isAvailable);
        QVERIFY(!m_state->isLocked());
        QCOMPARE(m_events->isOnConsole(), std::nullopt);
        QVERIFY(m_logind->tell(u"LockedHint"_s, 1));
        QVERIFY(m_logind->tell(u"Active"_s, QStringList{u"no"_s}));
        QVERIFY(m_logind->emitSignal(u"PrepareForSleep"_s, u"s"_s, u"true"_s));
        QTest::qWait(kLongEnough);
        QCOMPARE(m_told, QStringList());
        QVERIFY(!m_state->isLocked());
        QVERIFY(!m_state->isMainDisplayAsleep());
        QCOMPARE(m_events->isOnConsole(), std::nullopt);
        QVERIFY(m_logind->setLocked(true));
        QTRY_COMPARE(m_told, QStringList{kLocked});
        // What it said before stands.
        QVERIFY(m_logind->tell(u"LockedHint"_s, u"false"_s));
        QTest::qWait(kLongEnough);
        QVERIFY(m_state->isLocked());
    }

private:
    /// For what must not come to have come.
    static constexpr int kLongEnough = 200;

    bool startLogind(const QString& parameters = {})
    {
        m_logind = std::make_unique<MockedLogind>(*m_systemBus, parameters);
        if (!m_logind->problem().isEmpty())
            qWarning("%s", qPrintable(m_logind->problem()));
        return m_logind->problem().isEmpty();
    }

    bool startScreenSaver()
    {
        m_screenSaver = std::make_unique<MockedScreenSaver>(*m_sessionBus);
        if (!m_screenSaver->problem().isEmpty())
            qWarning("%s", qPrintable(m_screenSaver->problem()));
        return m_screenSaver->problem().isEmpty();
    }

    void watch()
    {
        const auto session = std::make_shared<SessionWatch>();
        m_state = std::make_unique<LinuxScreenState>(session);
        m_events = std::make_unique<LinuxSessionEvents>(session);
        m_monitor = std::make_unique<InactivityMonitor>(
            m_events->workspace(), m_events->distributed(),
            [this](InactivityEvent event) { m_told.append(event.name()); },
            [this](ReturnEvent event) { m_told.append(event.name()); });
    }

    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<TestBus> m_systemBus;
    std::unique_ptr<TestBus> m_sessionBus;
    std::unique_ptr<MockedLogind> m_logind;
    std::unique_ptr<MockedScreenSaver> m_screenSaver;
    std::unique_ptr<LinuxScreenState> m_state;
    std::unique_ptr<LinuxSessionEvents> m_events;
    std::unique_ptr<InactivityMonitor> m_monitor;
    QStringList m_told;
};

QTEST_GUILESS_MAIN(SessionTest)
#include "SessionTest.moc"
