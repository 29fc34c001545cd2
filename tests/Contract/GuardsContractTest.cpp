// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/AtspiSecureInput.h"
#include "Mossbank/Platform/Linux/SessionWatch.h"
#include "Mossbank/Platform/Null/NullScreenState.h"
#include "Mossbank/Platform/Null/NullSecureInput.h"
#include "tests/Contract/Contract.h"
#include "tests/Desktop/MockedSession.h"
#include "tests/Desktop/SecureInputWatch.h"
#include "tests/Desktop/SignIn.h"
#include "tests/Fakes/FakeGuards.h"

#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

constexpr int kPatience = 10'000;

} // namespace

/// What every screen state and every secure input holds to.
class GuardsContractTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aScreenStateTellsTheLock_data()
    {
        QTest::addColumn<bool>("isFake");
        QTest::newRow("fake") << true;
        QTest::newRow("Linux") << false;
    }
    void aScreenStateTellsTheLock()
    {
        QFETCH(bool, isFake);
        const VirtualDesktop desktop;
        TestBus systemBus(TestBus::Kind::System);
        TestBus sessionBus(TestBus::Kind::Session);
        MockedLogind logind(systemBus);
        QVERIFY2(logind.problem().isEmpty(), qPrintable(logind.problem()));
        FakeScreenState fake;
        const LinuxScreenState real(std::make_shared<SessionWatch>());
        const ScreenState& state = isFake ? static_cast<const ScreenState&>(fake) : real;
        const auto lock = [&](bool isLocked) {
            fake.isLockedNow = isLocked;
            return logind.setLocked(isLocked);
        };
        QVERIFY(state.availability().isAvailable);
        QVERIFY(isSound(state.availability()));
        QVERIFY(!state.isLocked());
        QVERIFY(!state.isMainDisplayAsleep());
        QVERIFY(lock(true));
        QTRY_VERIFY(state.isLocked());
        QVERIFY(lock(false));
        QTRY_VERIFY(!state.isLocked());
    }

    void aScreenStateTellsTheLockByAScreenSaver_data() { aScreenStateTellsTheLock_data(); }
    void aScreenStateTellsTheLockByAScreenSaver()
    {
        QFETCH(bool, isFake);
        const VirtualDesktop desktop;
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere");
        TestBus sessionBus(TestBus::Kind::Session);
        MockedScreenSaver saver(sessionBus);
        QVERIFY2(saver.problem().isEmpty(), qPrintable(saver.problem()));
        FakeScreenState fake;
        const LinuxScreenState real(std::make_shared<SessionWatch>());
        const ScreenState& state = isFake ? static_cast<const ScreenState&>(fake) : real;
        const auto lock = [&](bool isLocked) {
            fake.isLockedNow = isLocked;
            return saver.setActive(isLocked);
        };
        QVERIFY(isSound(state.availability()));
        QVERIFY(state.availability().isAvailable);
        QVERIFY(!state.isLocked());
        QVERIFY(lock(true));
        QTRY_VERIFY(state.isLocked());
        QVERIFY(lock(false));
        QTRY_VERIFY(!state.isLocked());
    }

    void aScreenStateTellsTheSleepOfTheDisplay_data() { aScreenStateTellsTheLock_data(); }
    void aScreenStateTellsTheSleepOfTheDisplay()
    {
        QFETCH(bool, isFake);
        VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const TestBus sessionBus(TestBus::Kind::Session);
        FakeScreenState fake;
        const LinuxScreenState real(std::make_shared<SessionWatch>());
        const ScreenState& state = isFake ? static_cast<const ScreenState&>(fake) : real;
        const auto sleep = [&](bool isAsleep) {
            fake.isAsleepNow = isAsleep;
            const QString what = isAsleep ? u"activate"_s : u"reset"_s;
            return desktop.run(u"xset"_s, {u"s"_s, what}, u"x11-xserver-utils"_s).isSuccess;
        };
        QVERIFY(!state.isMainDisplayAsleep());
        for (int time = 0; time < 2; ++time) {
            QVERIFY(sleep(true));
            QTRY_VERIFY(state.isMainDisplayAsleep());
            QVERIFY(!state.isLocked());
            QVERIFY(sleep(false));
            QTRY_VERIFY(!state.isMainDisplayAsleep());
        }
    }

    void aSecureInputTellsAPassword_data() { aScreenStateTellsTheLock_data(); }
    void aSecureInputTellsAPassword()
    {
        QFETCH(bool, isFake);
        AccessibleDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto accessibility =
            std::make_shared<Accessibility>(std::make_shared<ApplicationCatalog>());
        QVERIFY(accessibility->waitUntilKnown(kPatience));
        FakeSecureInput fake;
        AtspiSecureInput real(accessibility);
        SecureInput& input = isFake ? static_cast<SecureInput&>(fake) : real;
        QVERIFY(input.availability().isAvailable);
        QVERIFY(isSound(input.availability()));
        QVERIFY2(openSignIn(desktop, u"GTK"_s), qPrintable(desktop.problem()));
        QVERIFY(settles(input, false));
        fake.isActiveNow = true;
        QVERIFY(desktop.press({u"Tab"_s}));
        QVERIFY(settles(input, true));
        fake.isActiveNow = false;
        QVERIFY(desktop.press({u"shift+Tab"_s}));
        QVERIFY(settles(input, false));
    }

    void aScreenStateThatIsUnavailableSaysWhyAndNo_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char* kind : {"Null", "fake", "Linux without a bus"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }
    void aScreenStateThatIsUnavailableSaysWhyAndNo()
    {
        QFETCH(QString, kind);
        std::unique_ptr<ScreenState> state;
        if (kind == u"Null"_s) {
            state = std::make_unique<NullScreenState>(kReason);
        } else if (kind == u"fake"_s) {
            state = std::make_unique<FakeScreenState>();
        } else {
            qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere");
            qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
            state = std::make_unique<LinuxScreenState>(std::make_shared<SessionWatch>());
        }
        QVERIFY(isSound(state->availability()));
        QCOMPARE(state->availability().isAvailable, kind == u"fake"_s);
        QVERIFY(!state->isLocked());
        QVERIFY(!state->isMainDisplayAsleep());
    }

    void aSecureInputThatIsUnavailableSaysWhyAndNo_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char* kind : {"Null", "fake", "Linux without a bus"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }
    void aSecureInputThatIsUnavailableSaysWhyAndNo()
    {
        QFETCH(QString, kind);
        const VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        std::unique_ptr<SecureInput> input;
        if (kind == u"Null"_s) {
            input = std::make_unique<NullSecureInput>(kReason);
        } else if (kind == u"fake"_s) {
            input = std::make_unique<FakeSecureInput>();
        } else {
            qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
            const auto accessibility =
                std::make_shared<Accessibility>(std::make_shared<ApplicationCatalog>());
            QVERIFY(accessibility->waitUntilKnown(kPatience));
            input = std::make_unique<AtspiSecureInput>(accessibility);
        }
        QVERIFY(isSound(input->availability()));
        QCOMPARE(input->availability().isAvailable, kind == u"fake"_s);
        QTRY_VERIFY(!input->isActive());
    }
};

QTEST_GUILESS_MAIN(GuardsContractTest)
#include "GuardsContractTest.moc"
