// SPDX-License-Identifier: Apache-2.0
//
// The application object: how it comes up with and without a library, and how it goes.
#include "Mossbank/Model/AppModel.h"

#include "tests/Model/RecorderRig.h"

#include <QSignalSpy>

using namespace mossbank;
using namespace Qt::StringLiterals;

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
        rig.preferences.setRecordsAtLaunch(recordsAtLaunch);
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot()));
        QVERIFY(model.store());
        QVERIFY(!model.recorder().isRecording());
        model.finishedLaunching();
        QCOMPARE(model.recorder().isRecording(), recordsAtLaunch);
        QVERIFY(!model.recorder().errorMessage());
    }

    void aLibraryThatCannotBeOpenedIsToldAndNothingIsRecorded()
    {
        RecorderRig rig(false);
        QFile blocking(rig.libraryRoot());
        QVERIFY(blocking.open(QIODevice::WriteOnly));
        rig.preferences.setRecordsAtLaunch(true);
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot()));
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
        QVERIFY(QDir().mkpath(rig.libraryRoot()));
        QFile database(rig.libraryRoot() + u"/history.sqlite"_s);
        QVERIFY(database.open(QIODevice::WriteOnly));
        database.write(QByteArray(8192, 'x'));
        database.close();
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot()));
        QCOMPARE(model.recorder().errorMessage(),
                 std::optional(u"History is unavailable: file is not a database"_s));
        QCOMPARE(database.size(), 8192);
    }

    void isReadyToQuitAtOnceWhenNothingIsUnderWay()
    {
        RecorderRig rig(false);
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot()));
        QSignalSpy ready(&model, &AppModel::readyToQuit);
        model.prepareToQuit();
        QCOMPARE(ready.count(), 1);
    }

    void doesNotWaitForAScreenThatHasStoppedAnswering()
    {
        RecorderRig rig(false);
        rig.screen.holdsContent = true;
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot()));
        QSignalSpy ready(&model, &AppModel::readyToQuit);
        model.recorder().toggleRecording();
        QTRY_COMPARE(rig.screen.contentsAsked, 1);
        model.prepareToQuit();
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
        QSemaphore reading;
        rig.recognizer.setHook([&] { reading.acquire(); });
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot()));
        QSignalSpy ready(&model, &AppModel::readyToQuit);
        model.recorder().toggleRecording();
        QTRY_COMPARE(rig.recognizer.readings(), 1);
        model.prepareToQuit();
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
