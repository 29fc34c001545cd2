// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/Updater.h"

#include "Mossbank/Model/AppModel.h"
#include "tests/Model/RecorderRig.h"

#include <QSignalSpy>

using namespace mossbank;
using namespace Qt::StringLiterals;

class UpdaterTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nothingIsCheckedUnasked()
    {
        RecorderRig rig(false);
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot(), nullptr));
        model.finishedLaunching();
        rig.clock.advance(86'400);
        QCoreApplication::processEvents();
        QCOMPARE(rig.updates.checks, 0);
    }

    void whatCameOfACheckIsTold_data()
    {
        QTest::addColumn<UpdateAnswer>("answer");
        QTest::addColumn<QString>("status");
        QTest::addColumn<QString>("error");
        const QString idle = u"Recording is off"_s;
        QTest::newRow("the newest") << UpdateAnswer::newest(true)
                                    << u"This is the newest version of Mossbank"_s << QString();
        QTest::newRow("the newest, as it was known")
            << UpdateAnswer::newest(false)
            << u"No newer version of Mossbank was known at the system's last check"_s << QString();
        QTest::newRow("a newer one")
            << UpdateAnswer::newer(u"2.1-1"_s)
            << u"Mossbank 2.1-1 can be installed with the updates of your system"_s << QString();
        QTest::newRow("installed already")
            << UpdateAnswer::installed()
            << u"Mossbank has been installed anew, which counts from its next start"_s << QString();
        QTest::newRow("failed") << UpdateAnswer::failed(u"There is no network."_s) << idle
                                << u"Could not check for updates: There is no network."_s;
    }
    void whatCameOfACheckIsTold()
    {
        QFETCH(UpdateAnswer, answer);
        QFETCH(QString, status);
        QFETCH(QString, error);
        RecorderRig rig(false);
        Updater updater(rig.updates, *rig.recorder);
        QVERIFY(updater.canCheckForUpdates());
        QSignalSpy changes(&updater, &Updater::canCheckForUpdatesChanged);
        updater.checkForUpdates();
        QCOMPARE(rig.updates.checks, 1);
        QVERIFY(!updater.canCheckForUpdates());
        rig.updates.answer(answer);
        QTRY_COMPARE(rig.recorder->status(), status);
        QTRY_COMPARE(rig.recorder->errorMessage().value_or(QString()), error);
        QCOMPARE(changes.count(), 2);
    }
};

QTEST_GUILESS_MAIN(UpdaterTest)
#include "UpdaterTest.moc"
