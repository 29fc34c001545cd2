// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/VaultKey.h"

#include "tests/Core/Library/LibraryTesting.h"
#include "tests/Fakes/FakeKeychain.h"

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

const FakeKeychain::Name kName = {VaultKey::kService, VaultKey::kAccount};
const QString kWrongSize =
    u"The keychain's encryption key is the wrong size, so saved screenshots from before now cannot "
    "be opened. Remove the \"local.burrow.desktop.images\" item to start again."_s;

SymmetricKey load(Keychain& keychain)
{
    return VaultKey::load(keychain, VaultKey::kService, VaultKey::kAccount);
}

QString refusalOf(Keychain& keychain)
{
    return failure<StoreError>([&] { load(keychain); });
}

QByteArray bytesOf(const SymmetricKey& key)
{
    return QByteArray(reinterpret_cast<const char*>(key.bytes().data()), SymmetricKey::kSize);
}

} // namespace

class VaultKeyTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theItemsNameIsLaidDown()
    {
        QCOMPARE(VaultKey::kService, u"local.burrow.desktop.images"_s);
        QCOMPARE(VaultKey::kAccount, u"library"_s);
    }

    void theFirstLoadMakesAKeyAndLaterOnesFindIt()
    {
        FakeKeychain keychain;
        const SymmetricKey first = load(keychain);
        QCOMPARE(keychain.calls, (QStringList{u"read"_s, u"add"_s}));
        QCOMPARE(keychain.items.size(), std::size_t(1));
        QCOMPARE(keychain.items.at(kName), bytesOf(first));
        QVERIFY(load(keychain) == first);
        QVERIFY(load(keychain) == first);
        QCOMPARE(keychain.calls.mid(2), (QStringList{u"read"_s, u"read"_s}));
        QCOMPARE(keychain.items.at(kName), bytesOf(first));
    }

    void everyUsersKeyIsAnother()
    {
        FakeKeychain one;
        FakeKeychain other;
        QVERIFY(!(load(one) == load(other)));
    }

    void aKeyOfAnotherAccountOrServiceIsNotTaken()
    {
        FakeKeychain keychain;
        const SymmetricKey key = load(keychain);
        QVERIFY(!(VaultKey::load(keychain, VaultKey::kService, u"other"_s) == key));
        QVERIFY(!(VaultKey::load(keychain, u"other"_s, VaultKey::kAccount) == key));
        QCOMPARE(keychain.items.size(), std::size_t(3));
        QVERIFY(load(keychain) == key);
    }

    void aKeyOfTheWrongSizeIsToldAndLeftAsItWas_data()
    {
        QTest::addColumn<int>("size");
        for (const int size : {0, 1, 16, 31, 33, 64})
            QTest::addRow("%d", size) << size;
    }
    void aKeyOfTheWrongSizeIsToldAndLeftAsItWas()
    {
        QFETCH(int, size);
        const QByteArray secret(size, 'k');
        FakeKeychain keychain;
        keychain.items[kName] = secret;
        QCOMPARE(refusalOf(keychain), kWrongSize);
        QCOMPARE(keychain.calls, QStringList{u"read"_s});
        QCOMPARE(keychain.items.at(kName), secret);
    }

    void theWrongSizeIsToldOfTheLaidDownItemWhateverWasAskedFor()
    {
        FakeKeychain keychain;
        keychain.items[{u"another"_s, u"one"_s}] = "short";
        QCOMPARE(failure<StoreError>([&] { VaultKey::load(keychain, u"another"_s, u"one"_s); }),
                 kWrongSize);
    }

    void whoeverWasQuickerIsTheOneWhoseKeyIsUsed()
    {
        const QByteArray theirs(SymmetricKey::kSize, 't');
        FakeKeychain keychain;
        keychain.beforeAdding = [&] {
            keychain.items[kName] = theirs;
        };
        QCOMPARE(bytesOf(load(keychain)), theirs);
        QCOMPARE(keychain.calls, (QStringList{u"read"_s, u"add"_s, u"read"_s}));
        QCOMPARE(keychain.items.at(kName), theirs);
    }

    void whoeverWasQuickerMayHaveLeftAKeyOfTheWrongSize()
    {
        FakeKeychain keychain;
        keychain.beforeAdding = [&] {
            keychain.items[kName] = "short";
        };
        QCOMPARE(refusalOf(keychain), kWrongSize);
        QCOMPARE(keychain.items.at(kName), QByteArray("short"));
    }

    void aDuplicateThatIsNotFoundIsTold()
    {
        FakeKeychain keychain;
        keychain.failures = {{2, {Keychain::Status::kDuplicate}}};
        QCOMPARE(refusalOf(keychain),
                 u"The keychain holds an encryption key it will not return."_s);
        QCOMPARE(keychain.calls.size(), 3);
        QVERIFY(keychain.items.empty());
    }

    void aDuplicateThatIsNotGivenUpIsTold()
    {
        FakeKeychain keychain;
        keychain.failures = {{2, {Keychain::Status::kDuplicate}}, {3, {-25308}}};
        QCOMPARE(refusalOf(keychain),
                 u"The keychain would not give up the encryption key (-25308)."_s);
    }

    void everyOtherStatusIsToldInDecimal_data()
    {
        QTest::addColumn<int>("status");
        for (const int status : {-25308, -1, 1, 2, 36, 25300, std::numeric_limits<int>::min(),
                                 // A duplicate is no answer to being asked for an item.
                                 Keychain::Status::kDuplicate})
            QTest::addRow("%d", status) << status;
    }
    void everyOtherStatusIsToldInDecimal()
    {
        QFETCH(int, status);
        FakeKeychain keychain;
        keychain.failures = {{1, {status}}};
        QCOMPARE(refusalOf(keychain),
                 u"The keychain would not give up the encryption key (%1)."_s.arg(status));
        // Whoever cannot tell whether there is a key makes none.
        QCOMPARE(keychain.calls, QStringList{u"read"_s});
        QVERIFY(keychain.items.empty());
    }

    void aKeyThatIsNotKeptIsTold_data()
    {
        QTest::addColumn<int>("status");
        // That nothing was found is no answer to being given an item.
        for (const int status : {-34018, -61, 5, Keychain::Status::kNotFound})
            QTest::addRow("%d", status) << status;
    }
    void aKeyThatIsNotKeptIsTold()
    {
        QFETCH(int, status);
        FakeKeychain keychain;
        keychain.failures = {{2, {status}}};
        QCOMPARE(refusalOf(keychain),
                 u"The keychain would not keep the encryption key (%1)."_s.arg(status));
        QVERIFY(keychain.items.empty());
    }

    void whyIsToldWhereTheKeychainKnows()
    {
        FakeKeychain keychain;
        keychain.isLocked = true;
        QCOMPARE(refusalOf(keychain), u"The keychain would not give up the encryption key (2). "
                                      "The keychain is locked."_s);
        keychain.isLocked = false;
        keychain.failures = {{3, {7, u"It is 100% full (%1)."_s}}};
        QCOMPARE(refusalOf(keychain), u"The keychain would not keep the encryption key (7). "
                                      "It is 100% full (%1)."_s);
    }
};

QTEST_GUILESS_MAIN(VaultKeyTest)
#include "VaultKeyTest.moc"
