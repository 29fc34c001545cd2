// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/SecretServiceKeychain.h"
#include "Mossbank/Platform/Null/NullKeychain.h"
#include "tests/Contract/Contract.h"
#include "tests/Desktop/KeyringTest.h"
#include "tests/Fakes/FakeKeychain.h"

#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;
using Status = Keychain::Status;

namespace {

/// Every byte there is, and so no text.
QByteArray everyByte()
{
    QByteArray bytes;
    for (int byte = 255; byte >= 0; --byte)
        bytes.append(static_cast<char>(byte));
    return bytes;
}

bool isFailure(const Status& status)
{
    return status.number != Status::kSuccess && status.number != Status::kNotFound &&
           status.number != Status::kDuplicate;
}

} // namespace

/// What every keychain holds to.
class KeychainContractTest final : public KeyringTest {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        KeyringTest::init();
        m_fake = nullptr;
    }

    void anEmptyOneFindsNothing_data() { kinds(); }
    void anEmptyOneFindsNothing()
    {
        const auto keychain = make();
        const Keychain::Answer answer = keychain->read(kService, kAccount);
        QCOMPARE(answer.status, Status{Status::kNotFound});
        QVERIFY(answer.secret.isEmpty());
    }

    void whatIsAddedIsReadByteForByte_data() { kinds(); }
    void whatIsAddedIsReadByteForByte()
    {
        const auto keychain = make();
        QCOMPARE(keychain->add(kService, kAccount, everyByte()), Status());
        for (int time = 0; time < 2; ++time) {
            const Keychain::Answer answer = keychain->read(kService, kAccount);
            QCOMPARE(answer.status, Status());
            QCOMPARE(answer.secret, everyByte());
        }
    }

    void anItemIsNeverReplaced_data() { kinds(); }
    void anItemIsNeverReplaced()
    {
        const auto keychain = make();
        QCOMPARE(keychain->add(kService, kAccount, "first"), Status());
        QCOMPARE(keychain->add(kService, kAccount, "second"), Status{Status::kDuplicate});
        QCOMPARE(keychain->add(kService, kAccount, "first"), Status{Status::kDuplicate});
        QCOMPARE(keychain->read(kService, kAccount).secret, QByteArray("first"));
    }

    void serviceAndAccountTellItemsApart_data() { kinds(); }
    void serviceAndAccountTellItemsApart()
    {
        const auto keychain = make();
        QCOMPARE(keychain->add(kService, kAccount, "one"), Status());
        QCOMPARE(keychain->read(kService, u"other"_s).status, Status{Status::kNotFound});
        QCOMPARE(keychain->read(u"other"_s, kAccount).status, Status{Status::kNotFound});
        QCOMPARE(keychain->add(kService, u"other"_s, "two"), Status());
        QCOMPARE(keychain->add(u"other"_s, kAccount, "three"), Status());
        QCOMPARE(keychain->read(kService, kAccount).secret, QByteArray("one"));
        QCOMPARE(keychain->read(kService, u"other"_s).secret, QByteArray("two"));
        QCOMPARE(keychain->read(u"other"_s, kAccount).secret, QByteArray("three"));
    }

    void aLockedOneFailsAndSaysWhy_data()
    {
        QTest::addColumn<bool>("isReal");
        QTest::addColumn<bool>("hasItem");
        QTest::newRow("Secret Service, with an item") << true << true;
        QTest::newRow("Secret Service, with none") << true << false;
        QTest::newRow("fake, with an item") << false << true;
        QTest::newRow("fake, with none") << false << false;
    }
    void aLockedOneFailsAndSaysWhy()
    {
        QFETCH(bool, hasItem);
        const auto keychain = make();
        if (hasItem)
            QCOMPARE(keychain->add(kService, kAccount, "secret"), Status());
        lock();
        const Keychain::Answer answer = keychain->read(kService, kAccount);
        QCOMPARE(answer.status.number, int(SecretServiceKeychain::Locked));
        QVERIFY(!answer.status.reason.isEmpty());
        QVERIFY(answer.secret.isEmpty());
        const Status added = keychain->add(kService, kAccount, "another");
        QCOMPARE(added.number, int(SecretServiceKeychain::Locked));
        QVERIFY(!added.reason.isEmpty());
    }

    void anyOfThemGivesTheVaultItsKey_data() { kinds(); }
    void anyOfThemGivesTheVaultItsKey()
    {
        const auto keychain = make();
        const SymmetricKey key = VaultKey::load(*keychain, kService, kAccount);
        QVERIFY(VaultKey::load(*keychain, kService, kAccount) == key);
    }

    void aKeyOfTheWrongSizeIsLeftAsItWas_data() { kinds(); }
    void aKeyOfTheWrongSizeIsLeftAsItWas()
    {
        const auto keychain = make();
        QCOMPARE(keychain->add(kService, kAccount, "0123456789abcdef"), Status());
        const QString message = refusalOf(*keychain);
        QVERIFY2(message.startsWith(u"The keychain's encryption key is the wrong size, "_s),
                 qPrintable(message));
        QCOMPARE(keychain->read(kService, kAccount).secret, QByteArray("0123456789abcdef"));
    }

    void noKeychainIsAFailureWithAReasonAndNeverNothingFound()
    {
        NullKeychain keychain(kReason);
        const Keychain::Answer answer = keychain.read(kService, kAccount);
        QVERIFY(isFailure(answer.status));
        QCOMPARE(answer.status.reason, kReason);
        QVERIFY(answer.secret.isEmpty());
        const Status added = keychain.add(kService, kAccount, "secret");
        QVERIFY(isFailure(added));
        QCOMPARE(added.reason, kReason);
        QCOMPARE(refusalOf(keychain),
                 u"The keychain would not give up the encryption key (1). "_s + kReason);
    }

private:
    static void kinds()
    {
        QTest::addColumn<bool>("isReal");
        QTest::newRow("Secret Service") << true;
        QTest::newRow("fake") << false;
    }

    std::unique_ptr<Keychain> make()
    {
        QFETCH(bool, isReal);
        if (isReal)
            return std::make_unique<SecretServiceKeychain>();
        auto fake = std::make_unique<FakeKeychain>();
        m_fake = fake.get();
        return fake;
    }

    void lock()
    {
        if (m_fake)
            m_fake->isLocked = true;
        else
            QVERIFY(keyring().lock());
    }

    FakeKeychain* m_fake = nullptr;
};

QTEST_GUILESS_MAIN(KeychainContractTest)
#include "KeychainContractTest.moc"
