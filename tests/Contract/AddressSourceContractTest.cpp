// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/AtspiAddressSource.h"
#include "Mossbank/Platform/Null/NullAddressSource.h"
#include "tests/Contract/Contract.h"
#include "tests/Desktop/VirtualDesktop.h"
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
        for (const char* kind : {"Null", "fake", "Linux without a bus"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }

    void whatIsNoBrowserCannotBeAskedAndHasNoAddress()
    {
        QFETCH(QString, kind);
        const VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        std::unique_ptr<AddressSource> source;
        if (kind == u"Null"_s) {
            source = std::make_unique<NullAddressSource>(kReason);
        } else if (kind == u"fake"_s) {
            source = std::make_unique<FakeAddressSource>();
        } else {
            qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
            const auto accessibility =
                std::make_shared<Accessibility>(std::make_shared<ApplicationCatalog>());
            constexpr int kPatience = 10'000;
            QVERIFY(accessibility->waitUntilKnown(kPatience));
            source = std::make_unique<AtspiAddressSource>(accessibility);
        }
        QVERIFY(isSound(source->availability()));
        QCOMPARE(source->availability().isAvailable, kind == u"fake"_s);
        QVERIFY(!source->canAsk(u"org.example.Editor"_s));
        QCOMPARE(source->ask(u"org.example.Editor"_s).result(), AddressAnswer::failed());
        QVERIFY(!source->switchOn().isEmpty());
    }
};

QTEST_GUILESS_MAIN(AddressSourceContractTest)
#include "AddressSourceContractTest.moc"
