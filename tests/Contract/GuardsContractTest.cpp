// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/AtspiSecureInput.h"
#include "Mossbank/Platform/Linux/SessionWatch.h"
#include "Mossbank/Platform/Null/NullScreenState.h"
#include "Mossbank/Platform/Null/NullSecureInput.h"
#include "tests/Contract/Contract.h"
#include "tests/Desktop/VirtualDesktop.h"
#include "tests/Fakes/FakeGuards.h"

#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

/// What every screen state and every secure input holds to.
class GuardsContractTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
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
            constexpr int kPatience = 10'000;
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
