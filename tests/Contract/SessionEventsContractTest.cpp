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

    void whoWatchesHearsOfAllSeven_data() { itSaysWhatItCannotTell_data(); }
    void whoWatchesHearsOfAllSeven()
    {
        QFETCH(QString, kind);
        const auto events = make(kind);
        QStringList told;
        {
            const InactivityMonitor monitor(
                events->workspace(), events->distributed(),
                [&](InactivityEvent event) { told.append(event.name()); },
                [&](ReturnEvent event) { told.append(event.name()); });
            for (const InactivityEvent event : InactivityEvent::kAllCases)
                (event.isDistributed() ? events->distributed() : events->workspace())
                    .post(event.name());
            for (const ReturnEvent event : ReturnEvent::kAllCases)
                (event.isDistributed() ? events->distributed() : events->workspace())
                    .post(event.name());
            QCOMPARE(told.size(), 7);
        }
        events->workspace().post(InactivityEvent(InactivityEvent::Sleep).name());
        events->distributed().post(InactivityEvent(InactivityEvent::ScreenLocked).name());
        QCOMPARE(told.size(), 7);
    }

    void aLockAndItsEndAreTold_data()
    {
        QTest::addColumn<bool>("isFake");
        QTest::newRow("fake") << true;
        QTest::newRow("Linux") << false;
    }
    void aLockAndItsEndAreTold()
    {
        QFETCH(bool, isFake);
        const VirtualDesktop desktop;
        TestBus systemBus(TestBus::Kind::System);
        TestBus sessionBus(TestBus::Kind::Session);
        MockedLogind logind(systemBus);
        QVERIFY2(logind.problem().isEmpty(), qPrintable(logind.problem()));
        FakeSessionEvents fake;
        fake.isOnConsoleNow = true;
        LinuxSessionEvents real(std::make_shared<SessionWatch>());
        SessionEvents& events = isFake ? static_cast<SessionEvents&>(fake) : real;
        QVERIFY(events.availability().isAvailable);
        QVERIFY(isSound(events.availability()));
        QCOMPARE(events.isOnConsole(), std::optional(true));
        QStringList told;
        const InactivityMonitor monitor(
            events.workspace(), events.distributed(),
            [&](InactivityEvent event) { told.append(event.name()); },
            [&](ReturnEvent event) { told.append(event.name()); });
        const InactivityEvent leaving(InactivityEvent::ScreenLocked);
        const ReturnEvent back(ReturnEvent::ScreenUnlocked);
        if (isFake)
            fake.tell(leaving);
        QVERIFY(logind.setLocked(true));
        QTRY_COMPARE(told, QStringList{leaving.name()});
        if (isFake)
            fake.tell(back);
        QVERIFY(logind.setLocked(false));
        QTRY_COMPARE(told, (QStringList{leaving.name(), back.name()}));
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
