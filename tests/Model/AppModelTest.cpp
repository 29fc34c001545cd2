// SPDX-License-Identifier: Apache-2.0
//
// The application object: how it comes up with and without a library, and how it goes.
#include "Mossbank/Model/AppModel.h"

#include "MossbankCore/Library/VaultKey.h"
#include "tests/Fakes/FakeKeychain.h"
#include "tests/Model/RecorderRig.h"
#include "tests/Model/SavedPicture.h"

#include <QSignalSpy>

#include <dlfcn.h>

namespace {

bool isCipherWrong = false;

} // namespace

// Stands before OpenSSL's own for everything in this program.
extern "C" int EVP_EncryptUpdate(void* context, unsigned char* out, int* written,
                                 const unsigned char* in, int length)
{
    using Function = int (*)(void*, unsigned char*, int*, const unsigned char*, int);
    const auto original = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "EVP_EncryptUpdate"));
    const int status = original(context, out, written, in, length);
    if (isCipherWrong)
        out[0] ^= 1U;
    return status;
}

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

const QString kStartAgain = u"Browsers have to be started again."_s;

} // namespace

class AppModelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void recordsAtLaunchOnlyWhenAskedTo_data()
    {
        QTest::addColumn<bool>("recordsAtLaunch");
        QTest::newRow("asked to") << true;
        QTest::newRow("not asked to") << false;
    }
    void recordsAtLaunchOnlyWhenAskedTo()
    {
        QFETCH(bool, recordsAtLaunch);
        RecorderRig rig(false);
        FakeKeychain keychain;
        rig.preferences.setRecordsAtLaunch(recordsAtLaunch);
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot(), &keychain));
        QVERIFY(model.store());
        QVERIFY(!model.recorder().isRecording());
        model.finishedLaunching();
        QCOMPARE(model.recorder().isRecording(), recordsAtLaunch);
        QVERIFY(!model.recorder().errorMessage());
    }

    void whoChoosesAddressesHasThemSwitchedOn()
    {
        RecorderRig rig(false);
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot(), nullptr));
        model.finishedLaunching();
        // Nobody chose yet.
        QCOMPARE(rig.addresses.timesSwitchedOn, 0);
        rig.preferences.setSavesAddresses(false);
        QCOMPARE(rig.addresses.timesSwitchedOn, 0);
        rig.preferences.setSavesAddresses(true);
        QCOMPARE(rig.addresses.timesSwitchedOn, 1);
        QVERIFY(rig.addresses.isWantedOn);
        // The user is to do something, so the next save must not take it off the screen.
        QCOMPARE(model.recorder().errorMessage(), kStartAgain);
        rig.preferences.setSavesAddresses(false);
        QVERIFY2(!rig.addresses.isWantedOn, "the choice was taken back");
    }

    void whatStandsThereAlreadyIsNotLostForThat()
    {
        RecorderRig rig(false);
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot(), nullptr));
        const QString before = u"Screenshots will be saved unencrypted: there is no keyring."_s;
        model.recorder().setErrorMessage(before);
        rig.preferences.setSavesAddresses(true);
        QCOMPARE(model.recorder().errorMessage(), before);
        QCOMPARE(model.recorder().status(), kStartAgain);
    }

    void aChoiceOfAddressesCountsInTheNextSessionToo_data()
    {
        QTest::addColumn<bool>("savesAddresses");
        QTest::newRow("chosen") << true;
        QTest::newRow("refused") << false;
    }
    void aChoiceOfAddressesCountsInTheNextSessionToo()
    {
        QFETCH(bool, savesAddresses);
        RecorderRig rig(false);
        rig.preferences.setSavesAddresses(savesAddresses);
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot(), nullptr));
        QCOMPARE(rig.addresses.timesSwitchedOn, 0);
        model.finishedLaunching();
        QCOMPARE(rig.addresses.timesSwitchedOn, savesAddresses ? 1 : 0);
        QCOMPARE(model.recorder().status(), u"Recording is off"_s);
        QCOMPARE(model.recorder().errorMessage(),
                 savesAddresses ? std::optional(kStartAgain) : std::nullopt);
    }

    void displaysAreCalledAsTheScreenCallsThem()
    {
        RecorderRig rig(false);
        rig.screen.displayNamesNow = {u"LG HDR 4K"_s, u"eDP-1"_s};
        const AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot(), nullptr));
        QCOMPARE(model.displayNames(), (QStringList{u"LG HDR 4K"_s, u"eDP-1"_s}));
        rig.screen.displayNamesNow = {u"eDP-1"_s};
        QCOMPARE(model.displayNames(), QStringList{u"eDP-1"_s});
    }

    void aLibraryThatCannotBeOpenedIsToldAndNothingIsRecorded()
    {
        RecorderRig rig(false);
        FakeKeychain keychain;
        QFile blocking(rig.libraryRoot());
        QVERIFY(blocking.open(QIODevice::WriteOnly));
        rig.preferences.setRecordsAtLaunch(true);
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot(), &keychain));
        model.finishedLaunching();
        QVERIFY(!model.store());
        QVERIFY(!model.recorder().isRecording());
        const QString message = model.recorder().errorMessage().value_or(QString());
        QVERIFY2(message.startsWith(u"History is unavailable: "_s), qPrintable(message));
        QVERIFY2(message.contains(rig.libraryRoot()), qPrintable(message));
    }

    void aDamagedDatabaseIsToldInSqlitesWords()
    {
        RecorderRig rig(false);
        FakeKeychain keychain;
        QVERIFY(QDir().mkpath(rig.libraryRoot()));
        QFile database(rig.libraryRoot() + u"/history.sqlite"_s);
        QVERIFY(database.open(QIODevice::WriteOnly));
        database.write(QByteArray(8192, 'x'));
        database.close();
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot(), &keychain));
        QCOMPARE(model.recorder().errorMessage(),
                 std::optional(u"History is unavailable: file is not a database"_s));
        QCOMPARE(database.size(), 8192);
    }

    void theKeyInTheKeychainSealsWhatIsSaved()
    {
        RecorderRig rig(false);
        FakeKeychain keychain;
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot(), &keychain));
        QVERIFY(!model.recorder().errorMessage());
        QVERIFY(model.vault());
        QCOMPARE(keychain.calls, (QStringList{u"read"_s, u"add"_s}));
        const QByteArray bytes = onlyPictureOf(model);
        QVERIFY(ImageVault::isSealed(bytes));
        const auto key =
            SymmetricKey::fromBytes(keychain.items.at({VaultKey::kService, VaultKey::kAccount}));
        const auto jpeg = ImageVault(*key).opened(bytes);
        QVERIFY(jpeg);
        QVERIFY(jpeg->startsWith(QByteArray::fromHex("ffd8ff")));
        QVERIFY(model.vault()->opened(bytes) == jpeg);
    }

    void withoutAKeyItSaysSoAndSavesPlain_data()
    {
        QTest::addColumn<Keychain::Status>("status");
        QTest::addColumn<QString>("message");
        QTest::newRow("a number") << Keychain::Status{-25308}
                                  << u"Screenshots will be saved unencrypted: The keychain would "
                                     "not give up the encryption key (-25308)."_s;
        QTest::newRow("and why") << Keychain::Status{2, u"The keyring is locked."_s}
                                 << u"Screenshots will be saved unencrypted: The keychain would "
                                    "not give up the encryption key (2). The keyring is locked."_s;
    }
    void withoutAKeyItSaysSoAndSavesPlain()
    {
        QFETCH(Keychain::Status, status);
        QFETCH(QString, message);
        RecorderRig rig(false);
        FakeKeychain keychain;
        keychain.failures = {{1, status}};
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot(), &keychain));
        QCOMPARE(model.recorder().errorMessage(), std::optional(message));
        QVERIFY(!model.vault());
        QVERIFY(model.store());
        QVERIFY(onlyPictureOf(model).startsWith(QByteArray::fromHex("ffd8ff")));
        // Nobody asks again in this run, and the line stays.
        QCOMPARE(keychain.calls.size(), 1);
        QCOMPARE(model.recorder().errorMessage(), std::optional(message));
    }

    void aCipherThatComputesSomethingElseIsNotGivenAKey()
    {
        RecorderRig rig(false);
        FakeKeychain keychain;
        isCipherWrong = true;
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot(), &keychain));
        isCipherWrong = false;
        QCOMPARE(model.recorder().errorMessage(),
                 std::optional(u"Screenshots will be saved unencrypted: Encryption does not work "
                               "as it should on this computer."_s));
        QVERIFY(!model.vault());
        QVERIFY(keychain.calls.isEmpty());
        QVERIFY(onlyPictureOf(model).startsWith(QByteArray::fromHex("ffd8ff")));
    }

    void withoutAKeychainPicturesLiePlainAndNothingIsSaid()
    {
        RecorderRig rig(false);
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot(), nullptr));
        QVERIFY(!model.recorder().errorMessage());
        QVERIFY(!model.vault());
        QVERIFY(onlyPictureOf(model).startsWith(QByteArray::fromHex("ffd8ff")));
    }

    void aLibraryThatCannotBeOpenedIsToldBeforeTheKey()
    {
        RecorderRig rig(false);
        FakeKeychain keychain;
        keychain.isLocked = true;
        QFile blocking(rig.libraryRoot());
        QVERIFY(blocking.open(QIODevice::WriteOnly));
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot(), &keychain));
        QVERIFY(model.recorder().errorMessage()->startsWith(u"History is unavailable: "_s));
    }

    void isReadyToQuitAtOnceWhenNothingIsUnderWay()
    {
        RecorderRig rig(false);
        FakeKeychain keychain;
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot(), &keychain));
        QSignalSpy ready(&model, &AppModel::readyToQuit);
        model.quitGuard().quit(QuitGuard::Cause::Session);
        QCOMPARE(ready.count(), 1);
    }

    void doesNotWaitForAScreenThatHasStoppedAnswering()
    {
        RecorderRig rig(false);
        FakeKeychain keychain;
        rig.screen.holdsContent = true;
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot(), &keychain));
        QSignalSpy ready(&model, &AppModel::readyToQuit);
        model.recorder().toggleRecording();
        QTRY_COMPARE(rig.screen.contentsAsked, 1);
        model.quitGuard().quit(QuitGuard::Cause::Session);
        QTRY_COMPARE(rig.clock.sleepers(), std::size_t(1));
        rig.clock.advance(9.9);
        QCOMPARE(ready.count(), 0);
        rig.clock.advance(0.1);
        QCOMPARE(ready.count(), 1);
        rig.screen.releaseContent();
        QCoreApplication::processEvents();
    }

    void waitsForTheSaveUnderWayBeforeItQuits()
    {
        RecorderRig rig(false);
        FakeKeychain keychain;
        QSemaphore reading;
        rig.recognizer.setHook([&] { reading.acquire(); });
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot(), &keychain));
        QSignalSpy ready(&model, &AppModel::readyToQuit);
        model.recorder().toggleRecording();
        QTRY_COMPARE(rig.recognizer.readings(), 1);
        model.quitGuard().quit(QuitGuard::Cause::Session);
        QVERIFY(!model.recorder().isRecording());
        QTest::qWait(20);
        QCOMPARE(ready.count(), 0);
        reading.release();
        QTRY_COMPARE(ready.count(), 1);
        QVERIFY(!model.recorder().isCapturing());
    }
};

QTEST_GUILESS_MAIN(AppModelTest)
#include "AppModelTest.moc"
