// SPDX-License-Identifier: Apache-2.0
//
// The library at the start of the program: what is put in order, and what goes for its age.
#include "tests/Fakes/BadDisk.h"
#include "tests/Fakes/FakeKeychain.h"
#include "tests/Model/RecorderRig.h"
#include "tests/Model/SavedPicture.h"

#include <cerrno>
#include <optional>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

class LibraryAtStartTest : public QObject {
    Q_OBJECT

    /// The picture of a save that was cut short long ago.
    static QString cutShortIn(const RecorderRig& rig)
    {
        const QString path = rig.libraryRoot() + u"/%1/A.jpg"_s;
        for (const QString& place : {u"Images"_s, u"Pending"_s}) {
            QFile file(path.arg(place));
            if (!file.open(QIODevice::WriteOnly) || file.write("x") != 1 || !file.flush() ||
                !file.setFileTime(QDateTime::fromSecsSinceEpoch(1'600'000'000),
                                  QFile::FileModificationTime))
                qFatal("cannot write %s", qPrintable(file.fileName()));
        }
        return path.arg(u"Images"_s);
    }

private Q_SLOTS:
    void theLibraryIsPutInOrderAtTheStart()
    {
        RecorderRig rig(false);
        FakeKeychain keychain;
        keychain.failures = {{1, {2, u"The keyring is locked."_s}}};
        {
            AppModel before(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot(), &keychain));
            QVERIFY(!ImageVault::isSealed(onlyPictureOf(before)));
        }
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot(), &keychain));
        const QString cutShort = cutShortIn(rig);
        rig.sealing.hold();
        model.finishedLaunching();
        QTRY_VERIFY(rig.sealing.isHolding());
        QVERIFY2(!QFile::exists(cutShort), "sealed before it was tidied");
        rig.sealing.release();
        QTRY_COMPARE(rig.clock.sleepers(), std::size_t(1)); // between two batches
        rig.clock.advance(0.2);
        QTRY_COMPARE(model.recorder().status(), u"Encrypted 1 screenshot saved earlier"_s);
    }

    void whatIsPutInOrderWithoutSuccessKeepsNothingElseFromIt()
    {
        RecorderRig rig(false);
        FakeKeychain keychain;
        keychain.failures = {{1, {2, u"The keyring is locked."_s}}};
        {
            AppModel before(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot(), &keychain));
            onlyPictureOf(before);
        }
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot(), &keychain));
        const QString cutShort = cutShortIn(rig);
        std::optional<BadDisk> disk;
        disk.emplace(rig.libraryRoot(), 1, BadDisk::Then::FailOn, EIO);
        connect(&model.recorder(), &Recorder::errorMessageChanged, this, [&] { disk.reset(); });
        model.finishedLaunching();
        QTRY_VERIFY(model.recorder().errorMessage().value_or(QString()).startsWith(
            u"Could not tidy the screenshot folder: "_s));
        // With the one that could not be removed.
        QVERIFY(QTest::qWaitFor([&] {
            rig.clock.advance(0.2);
            return model.recorder().status() == u"Encrypted 2 screenshots saved earlier"_s;
        }));
        QVERIFY(QFile::exists(cutShort));
    }

    void aSaveRemovesWhatIsTooOld_data()
    {
        QTest::addColumn<bool>("isReadable");
        QTest::addColumn<bool>("isChosenAnew");
        QTest::addColumn<bool>("isMended");
        QTest::newRow("as chosen") << true << false << false;
        QTest::newRow("what was chosen cannot be read") << false << false << false;
        QTest::newRow("it cannot be read, and was chosen anew") << false << true << false;
        QTest::newRow("it can be read again, and counts from the next start")
            << false << false << true;
    }
    void aSaveRemovesWhatIsTooOld()
    {
        QFETCH(bool, isReadable);
        QFETCH(bool, isChosenAnew);
        QFETCH(bool, isMended);
        RecorderRig rig(false);
        const QString path = rig.folder.filePath(u"broken.ini"_s);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(isReadable ? "" : "[General\nretentionDays=0\n");
        file.close();
        Preferences preferences(path);
        AppModel model(rig.surroundings(preferences),
                       OpenedLibrary::at(rig.libraryRoot(), nullptr));
        onlyPictureOf(model);
        model.recorder().stop();
        const QString first = model.store()->fetch({.limit = 10}).result().at(0).id;
        rig.clock.advance(31 * 86'400.0);
        model.finishedLaunching();
        if (isChosenAnew)
            preferences.setRetentionDays(14);
        if (isMended) {
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("[General]\nretentionDays=0\n");
            file.close();
            preferences.setInterval(7); // with this the file is looked at
        }
        QCoreApplication::processEvents();
        QCOMPARE(model.store()->fetch({.limit = 10}).result().size(), 1);
        rig.drawBlock({0, 0, 200, 150});
        model.recorder().toggleRecording();
        QTRY_VERIFY(!model.store()->fetch({.limit = 10}).result().isEmpty() &&
                    model.store()->fetch({.limit = 10}).result().at(0).id != first);
        if (isReadable || isChosenAnew) {
            QTRY_COMPARE(model.store()->fetch({.limit = 10}).result().size(), 1);
        } else {
            QTRY_VERIFY(!model.recorder().isCapturing());
            QTest::qWait(100);
            QCOMPARE(model.store()->fetch({.limit = 10}).result().size(), 2);
        }
    }
};

QTEST_GUILESS_MAIN(LibraryAtStartTest)
#include "LibraryAtStartTest.moc"
