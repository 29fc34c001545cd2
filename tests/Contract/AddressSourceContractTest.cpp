// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/AtspiAddressSource.h"
#include "Mossbank/Platform/Null/NullAddressSource.h"
#include "tests/Contract/Contract.h"
#include "tests/Desktop/AccessibleDesktop.h"
#include "tests/Fakes/FakeAddressSource.h"

#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

/// What every source of page addresses holds to.
class AddressSourceContractTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatIsNoBrowserCannotBeAskedAndHasNoAddress_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char* kind : {"Null", "fake", "Linux", "Linux without a bus"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }

    void whatIsNoBrowserCannotBeAskedAndHasNoAddress()
    {
        QFETCH(QString, kind);
        const bool hasBus = kind == u"Linux"_s;
        const AccessibleDesktop desktop(
            {.hasSession = hasBus, .hasAccessibility = hasBus, .isSwitchedOn = hasBus});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        std::unique_ptr<AddressSource> source;
        if (kind == u"Null"_s) {
            source = std::make_unique<NullAddressSource>(kReason);
        } else if (kind == u"fake"_s) {
            auto fake = std::make_unique<FakeAddressSource>();
            fake->answerNow = AddressAnswer::answered(u"http://example.org"_s);
            source = std::move(fake);
        } else {
            if (!hasBus)
                qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
            const auto accessibility =
                std::make_shared<Accessibility>(std::make_shared<ApplicationCatalog>());
            constexpr int kPatience = 10'000;
            QVERIFY(accessibility->waitUntilKnown(kPatience));
            source = std::make_unique<AtspiAddressSource>(accessibility);
        }
        QVERIFY(isSound(source->availability()));
        QCOMPARE(source->availability().isAvailable, kind == u"fake"_s || hasBus);
        QVERIFY(!source->canAsk(u"org.example.Editor"_s));
        QCOMPARE(source->ask(u"org.example.Editor"_s).result(), AddressAnswer::failed());
        // Where it is on already there is nothing to be told.
        QCOMPARE(source->switchOn().isEmpty(), hasBus);
        source->letBe();
    }
};

QTEST_GUILESS_MAIN(AddressSourceContractTest)
#include "AddressSourceContractTest.moc"
