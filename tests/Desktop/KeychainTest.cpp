// SPDX-License-Identifier: Apache-2.0
//
// The keyring as it is on a bad day: locked, missing, stopped, with too many keys in it, and with
// somebody else at it.
#include "Mossbank/Platform/Linux/KeyringTurn.h"
#include "Mossbank/Platform/Linux/SecretServiceKeychain.h"
#include "tests/Desktop/KeyringTest.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QSet>
#include <QTest>

#include <dlfcn.h>
#include <libsecret/secret.h>

#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace {

/// Done by somebody else just before an item is made.
std::function<void()> beforeCreating;
bool manglesSecrets = false;
/// How many searches still find what is there.
std::optional<int> truthfulSearches;

} // namespace

// These stand before libsecret's own for everything in this program.
extern "C" SecretItem* secret_item_create_sync(SecretCollection* collection,
                                               const SecretSchema* schema, GHashTable* attributes,
                                               const gchar* label, SecretValue* value,
                                               SecretItemCreateFlags flags,
                                               GCancellable* cancellable, GError** error)
{
    if (const auto meanwhile = std::exchange(beforeCreating, {}))
        meanwhile();
    const auto original = reinterpret_cast<decltype(&secret_item_create_sync)>(
        ::dlsym(RTLD_NEXT, "secret_item_create_sync"));
    return original(collection, schema, attributes, label, value, flags, cancellable, error);
}

extern "C" GList* secret_service_search_sync(SecretService* service, const SecretSchema* schema,
                                             GHashTable* attributes, SecretSearchFlags flags,
                                             GCancellable* cancellable, GError** error)
{
    if (truthfulSearches && (*truthfulSearches)-- <= 0)
        return nullptr;
    const auto original = reinterpret_cast<decltype(&secret_service_search_sync)>(
        ::dlsym(RTLD_NEXT, "secret_service_search_sync"));
    return original(service, schema, attributes, flags, cancellable, error);
}

extern "C" SecretValue* secret_value_new(const gchar* secret, gssize length, const gchar* type)
{
    const auto original =
        reinterpret_cast<decltype(&secret_value_new)>(::dlsym(RTLD_NEXT, "secret_value_new"));
    return original(secret, manglesSecrets ? length - 1 : length, type);
}

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;
using Status = Keychain::Status;

namespace {

const QByteArray kSecret(SymmetricKey::kSize, 'k');

constexpr SecretServiceKeychain::Patience kShort = {.service = std::chrono::milliseconds(700),
                                                    .user = std::chrono::milliseconds(700)};
constexpr int kShortEnough = 5000;

} // namespace

class KeychainTest : public KeyringTest {
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        beforeCreating = {};
        manglesSecrets = false;
        truthfulSearches.reset();
        KeyringTest::cleanup();
    }

    void theItemIsBytesWithALabelForThePerson()
    {
        SecretServiceKeychain keychain;
        const SymmetricKey key = VaultKey::load(keychain, kService, kAccount);
        QCOMPARE(keyring().secrets().size(), 1);
        QCOMPARE(keyring().secrets().first(),
                 QByteArray(reinterpret_cast<const char*>(key.bytes().data()), 32));
        QCOMPARE(keyring().label(), u"Mossbank"_s);
        const QMap<QString, QString> attributes = {
            {u"service"_s, u"local.burrow.desktop.images"_s},
            {u"account"_s, u"library"_s},
            {u"xdg:schema"_s, u"org.freedesktop.Secret.Generic"_s}};
        QCOMPARE(keyring().attributes(), attributes);
    }

    void aTextThatSomebodyPutThereIsAKeyOfTheWrongSize()
    {
        QVERIFY(keyring().put("a passphrase"));
        SecretServiceKeychain keychain;
        QVERIFY(
            refusalOf(keychain).startsWith(u"The keychain's encryption key is the wrong size, "_s));
        QCOMPARE(keyring().secrets(), QList<QByteArray>{"a passphrase"});
    }

    void severalKeysAreAFailureAndNoneIsTouched()
    {
        QVERIFY(keyring().put(kSecret));
        QVERIFY(keyring().put(QByteArray(32, 'l')));
        SecretServiceKeychain keychain;
        QCOMPARE(refusalOf(keychain),
                 u"The keychain would not give up the encryption key (3). There are several "
                 "encryption keys in the keyring."_s);
        QCOMPARE(keychain.add(kService, kAccount, kSecret).number,
                 int(SecretServiceKeychain::Ambiguous));
        QCOMPARE(keyring().secrets().size(), 2);
    }

    void aLockedKeyringIsToldAndNoSecondKeyIsMade_data()
    {
        QTest::addColumn<bool>("hasKey");
        QTest::addColumn<QString>("reason");
        QTest::newRow("with the key in it") << true << u"The keyring is locked."_s;
        QTest::newRow("with no key in it")
            << false << u"A keyring is locked, and there may be an encryption key in it."_s;
    }
    void aLockedKeyringIsToldAndNoSecondKeyIsMade()
    {
        QFETCH(bool, hasKey);
        QFETCH(QString, reason);
        if (hasKey)
            QVERIFY(keyring().put(kSecret));
        QVERIFY(keyring().lock());
        SecretServiceKeychain keychain;
        QCOMPARE(refusalOf(keychain),
                 u"The keychain would not give up the encryption key (2). "_s + reason);
        QCOMPARE(keychain.add(kService, kAccount, kSecret), (Status{2, reason}));
        QCOMPARE(keyring().secrets().size(), hasKey ? 1 : 0);
    }

    void aKeyThatIsNoLongerToldIsNotTakenForNone()
    {
        QVERIFY(keyring().put(kSecret));
        QVERIFY(keyring().lock());
        SecretServiceKeychain keychain;
        truthfulSearches = 1;
        QCOMPARE(refusalOf(keychain), u"The keychain would not give up the encryption key (2). The "
                                      "keyring is locked."_s);
        truthfulSearches.reset();
        QCOMPARE(keyring().secrets().size(), 1);
    }

    void theUserIsAskedToUnlockTheKeyring_data()
    {
        QTest::addColumn<QStringList>("keys");
        QTest::addColumn<bool>("stops");
        QTest::addColumn<QString>("message");
        const QString locked =
            u"The keychain would not give up the encryption key (2). The keyring is locked."_s;
        const QString alone =
            u"The keychain would not give up the encryption key (2). Nobody unlocked the keyring."_s;
        const QStringList password = {u"type"_s, u"--args"_s, u"1"_s, TestKeyring::password(),
                                      u"key"_s,  u"Return"_s};
        const QStringList escape = {u"key"_s, u"Escape"_s};
        QTest::newRow("and does") << password << false << QString();
        QTest::newRow("and does not want to") << escape << false << locked;
        QTest::newRow("and is not there") << QStringList() << false << alone;
        QTest::newRow("and the keyring stops") << QStringList() << true << alone;
    }
    void theUserIsAskedToUnlockTheKeyring()
    {
        QFETCH(QStringList, keys);
        QFETCH(bool, stops);
        QFETCH(QString, message);
        VirtualDesktop screen;
        QVERIFY2(screen.problem().isEmpty(), qPrintable(screen.problem()));
        QVERIFY(keyring().put(kSecret));
        QVERIFY(keyring().lock());
        QVERIFY2(screen.start(u"/usr/libexec/gcr-prompter"_s, {}, u"gcr"_s),
                 qPrintable(screen.problem()));
        QTRY_VERIFY(keyring().hasOwner("org.gnome.keyring.SystemPrompter"));

        // A program of its own: libsecret keeps what it asked with for as long as a program lives.
        QProcess starter;
        starter.start(QStringLiteral(MOSSBANK_KEYCHAIN_STARTER),
                      {kAccount, keys.isEmpty() ? u"3"_s : u"20"_s});
        const auto prompt = screen.run(
            u"xdotool"_s, {u"search"_s, u"--sync"_s, u"--onlyvisible"_s, u"--name"_s, u"Unlock"_s},
            u"xdotool"_s);
        QVERIFY2(prompt.isSuccess, qPrintable(prompt.text));
        if (stops)
            keyring().standStill();
        if (!keys.isEmpty()) {
            // It takes the keyboard a moment after it shows.
            QTest::qWait(1000);
            QVERIFY(screen.run(u"xdotool"_s, keys, u"xdotool"_s).isSuccess);
        }
        constexpr int kNotForEver = 10'000;
        QVERIFY(starter.waitForFinished(kNotForEver));
        // GLib's own complaints stand before it.
        const QString said = QString::fromLocal8Bit(starter.readAllStandardError());
        QCOMPARE(said.section(u'\n', -1), message);
        const QByteArray key = message.isEmpty() ? kSecret.toHex() : QByteArray();
        QCOMPARE(starter.readAllStandardOutput().trimmed(), key);
    }

    void withoutAKeyringServiceItSaysSo()
    {
        startKeyring({.hasService = false, .hasDefault = false});
        SecretServiceKeychain keychain;
        QCOMPARE(refusalOf(keychain), u"The keychain would not give up the encryption key (1). "
                                      "No keyring is running on this desktop."_s);
        QCOMPARE(keychain.add(kService, kAccount, kSecret).number, 1);
    }

    void withoutAKeyringForNewItemsItSaysSo_data()
    {
        QTest::addColumn<bool>("hasDefault");
        QTest::newRow("none has ever been made") << false;
        QTest::newRow("new items go where they are forgotten") << true;
    }
    void withoutAKeyringForNewItemsItSaysSo()
    {
        QFETCH(bool, hasDefault);
        startKeyring({.hasService = true, .hasDefault = hasDefault});
        if (hasDefault)
            QVERIFY(keyring().makeSessionTheDefault());
        SecretServiceKeychain keychain;
        QCOMPARE(refusalOf(keychain),
                 u"The keychain would not keep the encryption key (1). There is no keyring yet; "
                 "your desktop's program for passwords can make one."_s);
        QCOMPARE(keyring().secrets().size(), 0);
    }

    void aKeyringThatStandsStillIsNotWaitedForLong()
    {
        SecretServiceKeychain keychain(kShort);
        keyring().standStill();
        QElapsedTimer timer;
        timer.start();
        const Status read = keychain.read(kService, kAccount).status;
        const Status added = keychain.add(kService, kAccount, kSecret);
        const qint64 waited = timer.elapsed();
        keyring().goOn();
        const Status silent = {SecretServiceKeychain::Silent,
                               u"The keyring did not answer in time."_s};
        QCOMPARE(read, silent);
        QCOMPARE(added, silent);
        QVERIFY2(waited >= 1400 && waited < kShortEnough, qPrintable(QString::number(waited)));
        QCOMPARE(keyring().secrets().size(), 0);
    }

    void aBusThatStandsStillIsNotWaitedForLong()
    {
        SecretServiceKeychain keychain(kShort);
        keyring().busStandsStill();
        QElapsedTimer timer;
        timer.start();
        const Status read = keychain.read(kService, kAccount).status;
        const qint64 waited = timer.elapsed();
        keyring().busGoesOn();
        QCOMPARE(read.number, int(SecretServiceKeychain::Silent));
        QVERIFY2(waited < kShortEnough, qPrintable(QString::number(waited)));
    }

    void aKeyringThatWasKilledIsToldAsMissing()
    {
        SecretServiceKeychain keychain;
        QCOMPARE(keychain.read(kService, kAccount).status.number, Status::kNotFound);
        keyring().killService();
        QCOMPARE(keychain.read(kService, kAccount).status.number,
                 int(SecretServiceKeychain::Unavailable));
    }

    void programsThatAddTakeTurns()
    {
        const GObjectOwned<GDBusConnection> bus(
            g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
        const CallLimit limit(std::chrono::seconds(10));
        auto turn = std::make_unique<KeyringTurn>(bus.get(), limit);
        Status status;
        std::jthread other([&] {
            SecretServiceKeychain keychain;
            status = keychain.add(kService, kAccount, QByteArray(32, 'o'));
        });
        QTest::qWait(300);
        QCOMPARE(keyring().secrets().size(), 0);
        QVERIFY(keyring().put(kSecret));
        turn.reset();
        other.join();
        QCOMPARE(status, Status{Status::kDuplicate});
        QCOMPARE(keyring().secrets(), QList<QByteArray>{kSecret});
    }

    void whoeverNeverEndsHisTurnIsNotWaitedForLong()
    {
        const GObjectOwned<GDBusConnection> bus(
            g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
        const CallLimit limit(std::chrono::seconds(10));
        const KeyringTurn turn(bus.get(), limit);
        SecretServiceKeychain keychain(kShort);
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(keychain.add(kService, kAccount, kSecret).number,
                 int(SecretServiceKeychain::Silent));
        QVERIFY(timer.elapsed() < kShortEnough);
        QCOMPARE(keyring().secrets().size(), 0);
    }

    void ofTwoKeysMadeAtOnceTheOtherOneStays()
    {
        SecretServiceKeychain keychain;
        beforeCreating = [&] {
            QVERIFY(keyring().put(kSecret));
        };
        QCOMPARE(keychain.add(kService, kAccount, QByteArray(32, 'o')), Status{Status::kDuplicate});
        QCOMPARE(keyring().secrets(), QList<QByteArray>{kSecret});

        // And so the vault goes on with it.
        const SymmetricKey key = VaultKey::load(keychain, kService, kAccount);
        QVERIFY(key == *SymmetricKey::fromBytes(kSecret));
    }

    void aKeyringThatKeepsSomethingElseIsNotTrustedWithAKey()
    {
        SecretServiceKeychain keychain;
        manglesSecrets = true;
        const QString refusal = refusalOf(keychain);
        manglesSecrets = false;
        QCOMPARE(refusal, u"The keychain would not keep the encryption key (5). The keyring does "
                          "not keep a key as it was given."_s);
        QCOMPARE(keyring().secrets().size(), 0);
    }

    void manyStartersEndUpOnOneKey()
    {
        constexpr int kStarters = 8;
        constexpr int kRounds = 4;
        for (int round = 0; round < kRounds; ++round) {
            const QString account = u"round %1"_s.arg(round);
            std::vector<std::unique_ptr<QProcess>> starters;
            for (int number = 0; number < kStarters; ++number) {
                starters.push_back(std::make_unique<QProcess>());
                starters.back()->start(QStringLiteral(MOSSBANK_KEYCHAIN_STARTER), {account});
            }
            QSet<QByteArray> keys;
            for (const auto& starter : starters) {
                QVERIFY(starter->waitForFinished());
                QVERIFY2(starter->exitCode() == 0, starter->readAllStandardError().constData());
                keys.insert(QByteArray::fromHex(starter->readAllStandardOutput().trimmed()));
            }
            QCOMPARE(keys.size(), 1);
            QCOMPARE(keyring().secrets(account), keys.values());
        }
    }
};

QTEST_GUILESS_MAIN(KeychainTest)
#include "KeychainTest.moc"
