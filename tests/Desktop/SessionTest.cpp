// SPDX-License-Identifier: Apache-2.0
//
// What the screen saver tells of the user's leaving and return, by itself and together with logind.
#include "tests/Contract/Contract.h"
#include "tests/Desktop/WatchedSessionTest.h"

#include <QDBusVariant>
#include <QElapsedTimer>
#include <QTest>

#include <csignal>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

class SessionTest final : public WatchedSessionTest {
    Q_OBJECT

private Q_SLOTS:
    void theScreenSaverTellsOfTheLock()
    {
        QVERIFY(startScreenSaver());
        watch();
        QVERIFY(state().availability().isAvailable);
        QVERIFY(!events().availability().isAvailable);
        QVERIFY(!state().isLocked());
        QVERIFY(screenSaver().setActive(true));
        QTRY_COMPARE(told(), QStringList{kLocked});
        QVERIFY(state().isLocked());
        QVERIFY(screenSaver().setActive(false));
        QTRY_COMPARE(told(), (QStringList{kLocked, kUnlocked}));
    }

    void aScreenSaverThatWasActiveBeforeIsKnown()
    {
        QVERIFY(startScreenSaver());
        QVERIFY(screenSaver().setActive(true));
        watch();
        QVERIFY(state().isLocked());
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
        MockedService saver(sessionBus(), QDBusConnection::SessionBus, service, path,
                            {u"--session"_s, service, path, service});
        QVERIFY2(saver.problem().isEmpty(), qPrintable(saver.problem()));
        watch();
        const auto tell = [&](bool isActive) {
            return saver.mock(path, u"EmitSignal"_s,
                              {service, u"ActiveChanged"_s, u"b"_s,
                               QVariantList{QVariant::fromValue(QDBusVariant(isActive))}});
        };
        QVERIFY(tell(true));
        QTRY_COMPARE(told(), QStringList{kLocked});
        QVERIFY(state().isLocked());
        QVERIFY(tell(false));
        QTRY_COMPARE(told(), (QStringList{kLocked, kUnlocked}));
    }

    void eitherOfTheTwoLocksAndBothUnlock()
    {
        QVERIFY(startLogind());
        QVERIFY(startScreenSaver());
        watch();
        QVERIFY(screenSaver().setActive(true));
        QTRY_COMPARE(told(), QStringList{kLocked});
        QVERIFY(logind().setLocked(true));
        QVERIFY(screenSaver().setActive(false));
        QTest::qWait(kLongEnough);
        QVERIFY(state().isLocked());
        QCOMPARE(told(), QStringList{kLocked});
        QVERIFY(logind().setLocked(false));
        QTRY_COMPARE(told(), (QStringList{kLocked, kUnlocked}));
        QVERIFY(!state().isLocked());
    }

    void aScreenSaverThatEndsCoversNothing()
    {
        QVERIFY(startScreenSaver());
        watch();
        QVERIFY(screenSaver().setActive(true));
        QTRY_COMPARE(told(), QStringList{kLocked});
        endScreenSaver();
        QTRY_VERIFY(!state().availability().isAvailable);
        // It may be on its way back.
        QVERIFY(state().isLocked());
        QTRY_COMPARE_WITH_TIMEOUT(told(), (QStringList{kLocked, kUnlocked}), 15'000);
        QVERIFY(startScreenSaver());
        QTRY_VERIFY(state().availability().isAvailable);
        QVERIFY(screenSaver().setActive(true));
        QTRY_VERIFY(state().isLocked());
    }

    void withoutAnyBusNothingIsKnownAndNothingFails()
    {
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere");
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
        watch();
        QVERIFY(isSound(state().availability()));
        QVERIFY(!state().availability().isAvailable);
        QVERIFY(!events().availability().isAvailable);
        QVERIFY(!state().isLocked());
        QVERIFY(!state().isMainDisplayAsleep());
        QVERIFY(!events().isOnConsole());
    }

    void busesThatEndTakeNothingWithThem()
    {
        QVERIFY(startLogind());
        QVERIFY(startScreenSaver());
        watch();
        TestBus::end(systemBus().process());
        TestBus::end(sessionBus().process());
        QTest::qWait(kLongEnough);
        QVERIFY(!state().isLocked());
        QVERIFY(!state().isMainDisplayAsleep());
    }

    void servicesThatStandStillAreNotWaitedFor()
    {
        QVERIFY(startLogind());
        QVERIFY(startScreenSaver());
        ::kill(static_cast<pid_t>(logind().process().processId()), SIGSTOP);
        ::kill(static_cast<pid_t>(screenSaver().process().processId()), SIGSTOP);
        QElapsedTimer timer;
        timer.start();
        watch();
        QVERIFY2(timer.elapsed() < 2000, qPrintable(QString::number(timer.elapsed())));
        timer.restart();
        for (int i = 0; i < 100; ++i)
            QVERIFY(!state().isLocked());
        QVERIFY2(timer.elapsed() < 100, qPrintable(QString::number(timer.elapsed())));
        // Once they go on they are heard.
        QVERIFY(!events().availability().isAvailable);
        ::kill(static_cast<pid_t>(logind().process().processId()), SIGCONT);
        ::kill(static_cast<pid_t>(screenSaver().process().processId()), SIGCONT);
        QTRY_VERIFY_WITH_TIMEOUT(events().availability().isAvailable, 15'000);
        QVERIFY(logind().setLocked(true));
        QTRY_VERIFY(state().isLocked());
    }

    void aLockOfABusThatEndsDoesNotStandForEver()
    {
        QVERIFY(startLogind());
        QVERIFY(logind().setLocked(true));
        watch();
        QVERIFY(state().isLocked());
        TestBus::end(systemBus().process());
        QTRY_VERIFY(!state().isLocked());
        QVERIFY(!state().availability().isAvailable);
        QVERIFY(!events().isOnConsole());
    }
};

QTEST_GUILESS_MAIN(SessionTest)
#include "SessionTest.moc"
