// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Null/NullAddressSource.h"
#include "tests/Contract/Contract.h"
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
        QTest::addColumn<bool>("isNull");
        QTest::newRow("Null") << true;
        QTest::newRow("fake") << false;
    }

    void whatIsNoBrowserCannotBeAskedAndHasNoAddress()
    {
        QFETCH(bool, isNull);
        std::unique_ptr<AddressSource> source = std::make_unique<FakeAddressSource>();
        if (isNull)
            source = std::make_unique<NullAddressSource>(kReason);
        QVERIFY(isSound(source->availability()));
        QCOMPARE(source->availability().reason, isNull ? kReason : QString());
        QVERIFY(!source->canAsk(u"org.example.Editor"_s));
        QCOMPARE(source->ask(u"org.example.Editor"_s).result(), AddressAnswer::failed());
        QVERIFY(!source->switchOn().isEmpty());
    }
};

QTEST_GUILESS_MAIN(AddressSourceContractTest)
#include "AddressSourceContractTest.moc"
