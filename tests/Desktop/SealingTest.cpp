// SPDX-License-Identifier: Apache-2.0
//
// The whole program with and without a keyring: what lies on the disk, and what it says of it.
#include "MossbankCore/Library/ImageVault.h"
#include "MossbankCore/Library/VaultKey.h"
#include "tests/Desktop/RunningMossbank.h"
#include "tests/Desktop/TestKeyring.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <csignal>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

const QByteArray kJpegStart = QByteArray::fromHex("ffd8ff");

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool putFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

/// What another program gives out; none when it ends with a failure.
std::optional<QByteArray> outputOf(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
        return std::nullopt;
    return process.readAllStandardOutput();
}

/// The picture, opened by an implementation that is not ours.
std::optional<QByteArray> openedElsewhere(const QString& key, const QString& picture)
{
    return outputOf(QStringLiteral(MOSSBANK_SOURCE_DIR "/tests/fixtures/open-sealed-picture"),
                    {key, picture});
}

} // namespace

class SealingTest : public QObject {
    Q_OBJECT

    /// Records a terminal until so many pictures have been saved.
    static bool record(RunningMossbank& mossbank, int pictures = 1)
    {
        mossbank.choose({{u"interval"_s, u"1"_s}, {u"skipsUnchangedScreens"_s, u"false"_s}});
        return mossbank.start() && mossbank.waitFor(u"Saved at "_s, pictures);
    }

    static bool openTerminal(VirtualDesktop& desktop)
    {
        return desktop.problem().isEmpty() &&
               desktop.start(u"xterm"_s, {u"-e"_s, u"sleep"_s, u"1000"_s}, u"xterm"_s);
    }

private Q_SLOTS:
    void initTestCase()
    {
        useTestApplications();
        QVERIFY2(outputOf(u"python3"_s, {u"-c"_s, u"import cryptography"_s}),
                 "install the Debian package python3-cryptography");
        const QString missing = whyMissing(u"secret-tool"_s, u"libsecret-tools"_s);
        QVERIFY2(missing.isEmpty(), qPrintable(missing));
    }

    void aPictureOnTheDiskOpensWithTheKeyOfTheKeyringAndNotWithOneBitChanged()
    {
        TestKeyring keyring;
        QVERIFY2(keyring.problem().isEmpty(), qPrintable(keyring.problem()));
        VirtualDesktop desktop;
        QVERIFY2(openTerminal(desktop), qPrintable(desktop.problem()));
        RunningMossbank mossbank;
        mossbank.setSessionBus(keyring.address());
        QVERIFY2(record(mossbank, 2), qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.stop(SIGINT), 0);
        QVERIFY2(!mossbank.terminal().contains(u"unencrypted"_s), qPrintable(mossbank.terminal()));

        const auto key = outputOf(u"secret-tool"_s, {u"lookup"_s, u"service"_s, VaultKey::kService,
                                                     u"account"_s, VaultKey::kAccount});
        QVERIFY(key);
        QCOMPARE(key->size(), 32);
        const QTemporaryDir folder;
        const QString keyFile = folder.filePath(u"key"_s);
        QVERIFY(putFile(keyFile, *key));

        const QStringList pictures = mossbank.pictureFiles();
        QVERIFY(pictures.size() >= 2);
        QCOMPARE(mossbank.rows().size(), pictures.size());
        for (const QString& picture : pictures) {
            QVERIFY(contents(picture).startsWith("BRW1"));
            const auto jpeg = openedElsewhere(keyFile, picture);
            QVERIFY(jpeg);
            QVERIFY(jpeg->startsWith(kJpegStart));
            QCOMPARE(QImage::fromData(*jpeg).size(), QSize(1920, 1080));
            QCOMPARE(QFileInfo(picture).size(), jpeg->size() + 32);
        }
        for (const Memory& row : mossbank.rows())
            QCOMPARE(row.bytes,
                     QFileInfo(mossbank.library() + u"/Images/"_s + row.filename).size());

        QByteArray altered = contents(pictures.first());
        altered[altered.size() / 2] = static_cast<char>(altered[altered.size() / 2] ^ 1);
        const QString alteredFile = folder.filePath(u"altered.jpg"_s);
        QVERIFY(putFile(alteredFile, altered));
        QVERIFY(!openedElsewhere(keyFile, alteredFile));
        QVERIFY(!ImageVault(*SymmetricKey::fromBytes(*key)).opened(altered));
    }

    void theNextStartHasTheSameKey()
    {
        TestKeyring keyring;
        QVERIFY2(keyring.problem().isEmpty(), qPrintable(keyring.problem()));
        VirtualDesktop desktop;
        QVERIFY2(openTerminal(desktop), qPrintable(desktop.problem()));
        RunningMossbank mossbank;
        mossbank.setSessionBus(keyring.address());
        for (int time = 0; time < 2; ++time) {
            QVERIFY2(record(mossbank), qPrintable(mossbank.terminal()));
            QCOMPARE(mossbank.stop(SIGINT), 0);
            QCOMPARE(keyring.secrets().size(), 1);
        }
        const ImageVault vault(*SymmetricKey::fromBytes(keyring.secrets().first()));
        QVERIFY(mossbank.pictureFiles().size() >= 2);
        for (const QString& picture : mossbank.pictureFiles()) {
            const QByteArray bytes = contents(picture);
            QVERIFY(ImageVault::isSealed(bytes));
            QVERIFY(vault.opened(bytes));
        }
    }

    void withoutAKeyringItSaysSoAndSavesPlain()
    {
        VirtualDesktop desktop;
        QVERIFY2(openTerminal(desktop), qPrintable(desktop.problem()));
        RunningMossbank mossbank;
        QVERIFY2(record(mossbank), qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.stop(SIGINT), 0);
        QVERIFY2(mossbank.terminal().contains(
                     u"Screenshots will be saved unencrypted: The keychain would not give up the "
                     "encryption key (1). There is no session bus, and so no keyring.\n"_s),
                 qPrintable(mossbank.terminal()));
        for (const QString& picture : mossbank.pictureFiles())
            QVERIFY(contents(picture).startsWith(kJpegStart));
    }

    void aLockedKeyringIsToldAndNoKeyIsMade()
    {
        TestKeyring keyring;
        QVERIFY2(keyring.problem().isEmpty(), qPrintable(keyring.problem()));
        QVERIFY(keyring.lock());
        VirtualDesktop desktop;
        QVERIFY2(openTerminal(desktop), qPrintable(desktop.problem()));
        RunningMossbank mossbank;
        mossbank.setSessionBus(keyring.address());
        QVERIFY2(record(mossbank), qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.stop(SIGINT), 0);
        QVERIFY2(mossbank.terminal().contains(
                     u"Screenshots will be saved unencrypted: The keychain would not give up the "
                     "encryption key (2). A keyring is locked,"_s),
                 qPrintable(mossbank.terminal()));
        QCOMPARE(keyring.secrets().size(), 0);
    }

    void aBusThatGoesAwayIsNoReasonToEnd_data()
    {
        QTest::addColumn<bool>("whileAsked");
        QTest::addColumn<QString>("line");
        QTest::newRow("while the key is asked for")
            << true
            << u"Screenshots will be saved unencrypted: The keychain would not give up the "
               "encryption key (1). "_s;
        QTest::newRow("later") << false << u"Saved at "_s;
    }
    void aBusThatGoesAwayIsNoReasonToEnd()
    {
        QFETCH(bool, whileAsked);
        QFETCH(QString, line);
        auto keyring = std::make_unique<TestKeyring>();
        QVERIFY2(keyring->problem().isEmpty(), qPrintable(keyring->problem()));
        VirtualDesktop desktop;
        QVERIFY2(openTerminal(desktop), qPrintable(desktop.problem()));
        RunningMossbank mossbank;
        mossbank.choose({{u"interval"_s, u"1"_s}, {u"skipsUnchangedScreens"_s, u"false"_s}});
        mossbank.setSessionBus(keyring->address());
        if (whileAsked)
            keyring->standStill();
        QVERIFY(mossbank.start());
        if (whileAsked)
            QTest::qWait(1000);
        else
            QVERIFY2(mossbank.waitFor(line), qPrintable(mossbank.terminal()));
        keyring.reset();
        QVERIFY2(mossbank.waitFor(line), qPrintable(mossbank.terminal()));
        const int before = static_cast<int>(mossbank.terminal().count(u"Saved at "_s));
        QVERIFY2(mossbank.waitFor(u"Saved at "_s, before + 2), qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.stop(SIGINT), 0);
        for (const QString& picture : mossbank.pictureFiles())
            QCOMPARE(ImageVault::isSealed(contents(picture)), !whileAsked);
    }

    void theTerminalSearchAsksForNoKey()
    {
        VirtualDesktop desktop;
        QVERIFY2(openTerminal(desktop), qPrintable(desktop.problem()));
        auto keyring = std::make_unique<TestKeyring>();
        RunningMossbank mossbank;
        mossbank.setSessionBus(keyring->address());
        QVERIFY2(record(mossbank), qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.stop(SIGINT), 0);
        keyring.reset();
        const auto found = mossbank.find({u"xterm"_s});
        QVERIFY2(found.status == 0 && found.text.contains(u"XTerm"_s), qPrintable(found.text));
    }
};

QTEST_GUILESS_MAIN(SealingTest)
#include "SealingTest.moc"
