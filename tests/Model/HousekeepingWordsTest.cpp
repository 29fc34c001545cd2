// SPDX-License-Identifier: Apache-2.0
//
// What the library and a day's recording take, in words.
#include "Mossbank/Model/Housekeeping.h"
#include "Mossbank/Model/Preferences.h"
#include "tests/Model/RecorderRig.h"

using namespace mossbank;
using namespace Qt::StringLiterals;

class HousekeepingWordsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theNoteTellsWhatADayCanCost_data()
    {
        QTest::addColumn<double>("interval");
        QTest::addColumn<QString>("count");
        QTest::addColumn<QString>("size");
        QTest::newRow("the usual") << 30.0 << u"960"_s << u"0.4"_s;
        QTest::newRow("less than a second") << 0.5 << u"28800"_s << u"11.3"_s;
        QTest::newRow("none") << 0.0 << u"28800"_s << u"11.3"_s;
        QTest::newRow("rounded") << 45.0 << u"640"_s << u"0.3"_s;
        QTest::newRow("rounded up") << 7.0 << u"4114"_s << u"1.6"_s;
        QTest::newRow("ten minutes") << 600.0 << u"48"_s << u"0.0"_s;
    }
    void theNoteTellsWhatADayCanCost()
    {
        QFETCH(double, interval);
        QFETCH(QString, count);
        QFETCH(QString, size);
        const QString start = u"Still images, without audio. Over an eight-hour day that is at "
                              "most %1 screenshots and %2 GB. "_s.arg(count, size);
        const QString end = u" Mossbank pauses when your Mac sleeps, the screen locks or your "
                            "session becomes inactive, and never captures itself."_s;
        QCOMPARE(Housekeeping::estimate(interval, true, QLocale::c()),
                 start +
                     u"Most checks find a screen that has not moved and stop there, so a real day "
                     "is a fraction of that."_s +
                     end);
        QCOMPARE(Housekeeping::estimate(interval, false, QLocale::c()),
                 start +
                     u"Every check is being saved, because saving only on change is turned off."_s +
                     end);
        QVERIFY(Housekeeping::estimate(interval, true, QLocale(QLocale::German))
                    .contains(QString(size).replace(u'.', u',') + u" GB"_s));
    }

    void aSizeIsShownInItsUnit_data()
    {
        QTest::addColumn<qint64>("bytes");
        QTest::addColumn<QString>("label");
        QTest::newRow("nothing") << qint64{0} << u"0 KB"_s;
        QTest::newRow("a bit") << qint64{345'600} << u"345.6 kB"_s;
        QTest::newRow("more") << qint64{3'100'000'000} << u"3.1 GB"_s;
    }
    void aSizeIsShownInItsUnit()
    {
        QFETCH(qint64, bytes);
        QFETCH(QString, label);
        QCOMPARE(Housekeeping::storageLabel(bytes, QLocale::c()), label);
    }

    void theLibrarysFolderHasTheNameOfItsPlace()
    {
        RecorderRig rig;
        const Surroundings own = rig.surroundings();
        QCOMPARE(Housekeeping(own, *rig.recorder, rig.store.get()).libraryFolder(),
                 QFileInfo(rig.libraryRoot()).fileName());
        // One that could not be opened is where it would be.
        const QByteArray before = qgetenv("XDG_DATA_HOME");
        qputenv("XDG_DATA_HOME", rig.folder.path().toUtf8());
        QVERIFY(QDir(rig.folder.path()).mkpath(u"Burrow"_s));
        QFile library(rig.folder.filePath(u"Burrow/history.sqlite"_s));
        QVERIFY(library.open(QIODevice::WriteOnly));
        QCOMPARE(Housekeeping(own, *rig.recorder, nullptr).libraryFolder(), u"Burrow"_s);
        qputenv("XDG_DATA_HOME", before);

        Preferences sample{Preferences::Sample{}};
        QCOMPARE(
            Housekeeping(rig.surroundings(sample), *rig.recorder, rig.store.get()).libraryFolder(),
            u"Mossbank"_s);
    }
};

QTEST_GUILESS_MAIN(HousekeepingWordsTest)
#include "HousekeepingWordsTest.moc"
