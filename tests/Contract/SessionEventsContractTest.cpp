// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/SessionWatch.h"
#include "Mossbank/Platform/Null/NullSessionEvents.h"
#include "MossbankCore/Capture/InactivityMonitor.h"
#include "tests/Contract/Contract.h"
#include "tests/Desktop/MockedSession.h"
#include "tests/Desktop/VirtualDesktop.h"
#include "tests/Fakes/FakeSessionEvents.h"

#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

/// What everything that tells of the user's leaving holds to, and everything that has them choose.
class SessionEventsContractTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itSaysWhatItCannotTell_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char* kind : {"Null", "fake", "Linux without a bus"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }
    void itSaysWhatItCannotTell()
    {
        QFETCH(QString, kind);
        const auto events = make(kind);
        QVERIFY(isSound(events->availability()));
        QCOMPARE(events->availability().isAvailable, kind == u"fake"_s);
        // Nothing said is not a no.
        QVERIFY(!events->isOnConsole());
    }

    void theLockIsToldByTheDistributedCenter_data() { itSaysWhatItCannotTell_data(); }
    void theLockIsToldByTheDistributedCenter()
    {
        QFETCH(QString, kind);
        const auto events = make(kind);
        QVERIFY(events->distributed().isDistributed());
        QVERIFY(!events->workspace().isDistributed());
    }

    void whatHappensIsToldInItsOrder_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char* kind : {"Null", "fake", "Linux"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }
    void whatHappensIsToldInItsOrder()
    {
        QFETCH(QString, kind);
        VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        TestBus systemBus(TestBus::Kind::System);
        TestBus sessionBus(TestBus::Kind::Session);
        MockedLogind logind(systemBus);
        QVERIFY2(logind.problem().isEmpty(), qPrintable(logind.problem()));
        NullSessionEvents none(kReason);
        FakeSessionEvents fake;
        const auto session = std::make_shared<SessionWatch>();
        LinuxScreenState display(session);
        LinuxSessionEvents real(session);
        SessionEvents& events = kind == u"Null"   ? static_cast<SessionEvents&>(none)
                                : kind == u"fake" ? static_cast<SessionEvents&>(fake)
                                                  : real;
        const auto isOnConsole = [&](bool isIt) {
            return events.isOnConsole() == (kind == u"Null" ? std::nullopt : std::optional(isIt));
        };
        const auto isScreenSaved = [&](const QString& what) {
            const bool isDone =
                desktop.run(u"xset"_s, {u"s"_s, what}, u"x11-xserver-utils"_s).isSuccess;
            // Whoever never asked is not told that it woke.
            return isDone && display.isMainDisplayAsleep() == (what == u"activate");
        };
        fake.isOnConsoleNow = true;
        QVERIFY(isOnConsole(true));

        QStringList told;
        const auto note = [&](const auto& event) {
            told.append(event.name());
        };
        const InactivityMonitor monitor(events.workspace(), events.distributed(), note, note);
        const auto end = events.workspace().addObserver(
            QString::fromUtf16(SessionEvents::kWillPowerOff), NotificationCenter::Delivery::Usual,
            [&](const QString& name) { told.append(name); });
        QStringList expected;
        // The fake is told what the others notice.
        const auto comes = [&](const auto& event) {
            fake.tell(event);
            if (kind != u"Null")
                expected.append(event.name());
            return QTest::qWaitFor([&] { return told == expected; }, 10'000);
        };

        QVERIFY(logind.setLocked(true));
        QVERIFY(comes(InactivityEvent(InactivityEvent::ScreenLocked)));
        QVERIFY(logind.setLocked(false));
        QVERIFY(comes(ReturnEvent(ReturnEvent::ScreenUnlocked)));
        QVERIFY(logind.sleep(true));
        QVERIFY(comes(InactivityEvent(InactivityEvent::Sleep)));
        QVERIFY(logind.sleep(false));
        QVERIFY(comes(ReturnEvent(ReturnEvent::Wake)));
        fake.isOnConsoleNow = false;
        QVERIFY(logind.setActive(false));
        QVERIFY(comes(InactivityEvent(InactivityEvent::SessionResigned)));
        QVERIFY(isOnConsole(false));
        fake.isOnConsoleNow = true;
        QVERIFY(logind.setActive(true));
        QVERIFY(comes(ReturnEvent(ReturnEvent::SessionActive)));
        QVERIFY(isOnConsole(true));
        QVERIFY(isScreenSaved(u"activate"_s));
        QVERIFY(isScreenSaved(u"reset"_s));
        QVERIFY(comes(ReturnEvent(ReturnEvent::ScreensWake)));
        QVERIFY(logind.emitSignal(u"PrepareForShutdown"_s, u"b"_s, true));
        fake.workspace().post(QString::fromUtf16(SessionEvents::kWillPowerOff));
        if (kind != u"Null")
            expected.append(QString::fromUtf16(SessionEvents::kWillPowerOff));
        QTRY_COMPARE(told, expected);
        // Called off.
        QVERIFY(logind.emitSignal(u"PrepareForShutdown"_s, u"b"_s, false));
        constexpr int kLongEnough = 300;
        QTest::qWait(kLongEnough);
        QCOMPARE(told, expected);
        events.workspace().removeObserver(end);
    }

private:
    static std::unique_ptr<SessionEvents> make(const QString& kind)
    {
        if (kind == u"Null"_s)
            return std::make_unique<NullSessionEvents>(kReason);
        if (kind == u"fake"_s)
            return std::make_unique<FakeSessionEvents>();
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere");
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
        return std::make_unique<LinuxSessionEvents>(std::make_shared<SessionWatch>());
    }
};

QTEST_GUILESS_MAIN(SessionEventsContractTest)
#include "SessionEventsContractTest.moc"
