// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/PackageKitUpdates.h"
#include "Mossbank/Platform/Null/NullUpdates.h"
#include "tests/Contract/Contract.h"
#include "tests/Desktop/MockedPackageKit.h"
#include "tests/Fakes/FakeUpdates.h"

#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

/// What everything that knows of newer versions holds to.
class UpdatesContractTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_bus = std::make_unique<TestBus>(TestBus::Kind::System);
        m_packageKit = std::make_unique<MockedPackageKit>(*m_bus);
        QVERIFY2(m_packageKit->problem().isEmpty(), qPrintable(m_packageKit->problem()));
        using Mock = MockedPackageKit;
        QVERIFY(m_packageKit->behave(u"SearchFiles"_s,
                                     {Mock::package(u"heron;1;amd64;marsh"_s), Mock::finished()}));
        QVERIFY(m_packageKit->behave(u"RefreshCache"_s, {Mock::finished()}));
        QVERIFY(m_packageKit->behave(u"GetUpdates"_s,
                                     {Mock::package(u"heron;2;amd64;marsh"_s), Mock::finished()}));
    }
    void cleanup()
    {
        m_packageKit.reset();
        m_bus.reset();
    }

    void aCheckIsAnsweredOnceAndLater_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char* kind :
             {"Linux", "Linux, not from a package", "Null", "fake", "fake that is not available"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }
    void aCheckIsAnsweredOnceAndLater()
    {
        QFETCH(QString, kind);
        const auto updates = make(kind);
        QList<UpdateAnswer> answers;
        connect(updates.get(), &Updates::checked, this,
                [&](const UpdateAnswer& answer) { answers.append(answer); });
        int changes = 0;
        connect(updates.get(), &Updates::canCheckForUpdatesChanged, this, [&] { ++changes; });
        QVERIFY(isSound(updates->availability()));
        const bool isAvailable = updates->availability().isAvailable;
        QCOMPARE(isAvailable, kind == u"Linux"_s || kind == u"fake"_s);
        if (isAvailable)
            QVERIFY(QTest::qWaitFor([&] { return updates->canCheckForUpdates(); }, 20'000));
        QCOMPARE(updates->canCheckForUpdates(), isAvailable);

        changes = 0;
        updates->checkForUpdates();
        QVERIFY2(!updates->canCheckForUpdates(), "one at a time");
        QCOMPARE(changes, isAvailable ? 1 : 0);
        QVERIFY(answers.isEmpty());
        if (isAvailable)
            updates->checkForUpdates();
        const UpdateAnswer expected = isAvailable
                                          ? UpdateAnswer::newer(u"2"_s)
                                          : UpdateAnswer::failed(updates->availability().reason);
        if (kind == u"fake"_s)
            static_cast<FakeUpdates&>(*updates).answer(expected);
        QTRY_COMPARE_WITH_TIMEOUT(answers, QList{expected}, 20'000);
        QCOMPARE(updates->canCheckForUpdates(), isAvailable);
        QCOMPARE(changes, isAvailable ? 2 : 0);
        QTest::qWait(100);
        QCOMPARE(answers.size(), 1);
    }

private:
    static std::unique_ptr<Updates> make(const QString& kind)
    {
        if (kind == u"Linux"_s)
            return std::make_unique<PackageKitUpdates>(u"/usr/bin/heron"_s);
        if (kind == u"Null"_s)
            return std::make_unique<NullUpdates>(kReason);
        if (kind.startsWith(u"Linux"_s))
            return std::make_unique<PackageKitUpdates>(u"/opt/heron"_s);
        auto fake = std::make_unique<FakeUpdates>();
        if (kind != u"fake"_s)
            fake->setAvailability(Availability::missing(kReason));
        return fake;
    }

    std::unique_ptr<TestBus> m_bus;
    std::unique_ptr<MockedPackageKit> m_packageKit;
};

QTEST_GUILESS_MAIN(UpdatesContractTest)
#include "UpdatesContractTest.moc"
