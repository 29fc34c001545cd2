// SPDX-License-Identifier: Apache-2.0
//
// A file of choices that somebody writes by hand, before the program reads it and while it runs.
#include "Mossbank/Model/Preferences.h"
#include "tests/Model/WrittenChoices.h"

#include <QFile>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace mossbank;
using namespace Qt::StringLiterals;

class ChoicesByHandTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void yesAndNoAreUnderstoodHoweverTheyAreWritten_data()
    {
        QTest::addColumn<QByteArray>("written");
        QTest::addColumn<bool>("saves");
        QTest::addColumn<bool>("isChosen");
        const auto add = [](const char* written, bool saves, bool isChosen) {
            QTest::newRow(written) << QByteArray(written) << saves << isChosen;
        };
        add("true", true, true);
        add("Yes", true, true);
        add("on", true, true);
        add("1", true, true);
        add("false", false, true);
        add("NO", false, true);
        add("off", false, true);
        add("0", false, true);
        // As if nothing were there: nobody has chosen to have accessibility switched on.
        add("perhaps", true, false);
        add("", true, false);
    }
    void yesAndNoAreUnderstoodHoweverTheyAreWritten()
    {
        QFETCH(QByteArray, written);
        QFETCH(bool, saves);
        QFETCH(bool, isChosen);
        const QTemporaryDir folder;
        const Preferences preferences(
            writtenChoices(folder, "[General]\nsavesAddresses=" + written + "\n"));
        QCOMPARE(preferences.savesAddresses(), saves);
        QCOMPARE(preferences.hasChosenAddresses(), isChosen);
    }

    void aModeOfNoKnownNameStandsAsItIs_data()
    {
        QTest::addColumn<QByteArray>("written");
        QTest::addColumn<QString>("mode");
        // Neither counts as absent: each then saves at any change.
        QTest::newRow("empty") << QByteArray("changeMode=") << QString();
        QTest::newRow("unknown") << QByteArray("changeMode=sometimes") << u"sometimes"_s;
        QTest::newRow("known") << QByteArray("changeMode=obvious") << u"obvious"_s;
    }
    void aModeOfNoKnownNameStandsAsItIs()
    {
        QFETCH(QByteArray, written);
        QFETCH(QString, mode);
        const QTemporaryDir folder;
        const Preferences preferences(writtenChoices(folder, "[General]\n" + written + "\n"));
        QCOMPARE(preferences.changeMode(), mode);
    }

    void aListWrittenByHandIsReadAsItIsMeant_data()
    {
        QTest::addColumn<QByteArray>("written");
        QTest::addColumn<QStringList>("list");
        QTest::newRow("none") << QByteArray("excludedBundles=") << QStringList();
        QTest::newRow("one") << QByteArray("excludedBundles=a.b") << QStringList{u"a.b"_s};
        QTest::newRow("two") << QByteArray("excludedBundles=a.b, c.d")
                             << QStringList{u"a.b"_s, u"c.d"_s};
        QTest::newRow("blanks in quotes")
            << QByteArray("excludedBundles=\" a.b\", \"c.d \"") << QStringList{u"a.b"_s, u"c.d"_s};
        QTest::newRow("an identity that ends so") << QByteArray("excludedBundles=a.b.desktop, c.d")
                                                  << QStringList{u"a.b.desktop"_s, u"c.d"_s};
        QTest::newRow("a comma too many")
            << QByteArray("excludedBundles=a.b, ,c.d") << QStringList{u"a.b"_s, u"c.d"_s};
    }
    void aListWrittenByHandIsReadAsItIsMeant()
    {
        QFETCH(QByteArray, written);
        QFETCH(QStringList, list);
        const QTemporaryDir folder;
        const Preferences preferences(writtenChoices(folder, "[General]\n" + written + "\n"));
        QCOMPARE(preferences.excludedBundles(), list);
    }

    void aFileChangedMeanwhileChangesNothingBehindAnybodysBack()
    {
        const QTemporaryDir folder;
        const QString path = writtenChoices(folder, "[General]\nexcludedBundles=a.b\n");
        Preferences preferences(path);
        writtenChoices(folder, "[General]\nexcludedBundles=c.d\ninterval=7\n");
        preferences.setLens(u"ask"_s);
        QCOMPARE(preferences.excludedBundles(), QStringList{u"a.b"_s});
        QCOMPARE(preferences.interval(), 30.0);
        // It counts from the next start.
        QCOMPARE(Preferences(path).excludedBundles(), QStringList{u"c.d"_s});
        QCOMPARE(Preferences(path).interval(), 7.0);
    }

    void whatWasExcludedInTheFileMeanwhileStaysExcluded()
    {
        const QTemporaryDir folder;
        const QString path = writtenChoices(folder, "[General]\nexcludedBundles=a.b, c.d\n");
        Preferences preferences(path);
        writtenChoices(folder, "[General]\nexcludedBundles=a.b, c.d, by.hand, e.f\n");
        QSignalSpy changes(&preferences, &Preferences::excludedBundlesChanged);
        preferences.setExcludedBundles({u"a.b"_s, u"e.f"_s});
        const QStringList both = {u"a.b"_s, u"e.f"_s, u"by.hand"_s};
        QCOMPARE(preferences.excludedBundles(), both);
        QCOMPARE(changes.count(), 1);
        QCOMPARE(Preferences(path).excludedBundles(), both);
        // From then on it is one like the others, and can be taken out.
        preferences.setExcludedBundles({u"a.b"_s});
        QCOMPARE(Preferences(path).excludedBundles(), QStringList{u"a.b"_s});
    }

    void slipsOfThePenAreKnown()
    {
        const QTemporaryDir folder;
        const Preferences preferences(writtenChoices(folder, R"([General]
interval=often
retentionDays=1.5
imageQuality=
skipsUnchangedScreens=yes
unchangedRefreshMinutes=5
recordsAtLaunch=yes please
changeMode=
lens=a, b
excludedBundle=a.b
excludedBundles=
pausedUntil=tomorrow
recordsAfterRelaunch=2026-01-01T00:00:00.000Z
# lens=ask
[Choices]
interval=5
)"));
        QCOMPARE(preferences.unusableKeys(),
                 (QStringList{u"interval"_s, u"retentionDays"_s, u"imageQuality"_s,
                              u"recordsAtLaunch"_s, u"lens"_s, u"pausedUntil"_s}));
        QCOMPARE(preferences.unknownKeys(),
                 (QStringList{u"Choices/interval"_s, u"excludedBundle"_s}));
        QCOMPARE(Preferences(Preferences::Sample{}).unknownKeys(), QStringList());
    }

    void aValueOutsideItsBoundsStandsAsItIs()
    {
        const QTemporaryDir folder;
        const Preferences preferences(
            writtenChoices(folder, "[General]\ninterval=7\nimageQuality=9\n"));
        QCOMPARE(preferences.interval(), 7.0);
        QCOMPARE(preferences.imageQuality(), 9.0);
    }

    void whatOthersStoreMeanwhileIsKept()
    {
        const QTemporaryDir folder;
        const QString path = writtenChoices(folder, "[General]\nunknown=1\nlens=ask\n");
        Preferences preferences(path);
        QCOMPARE(preferences.lens(), u"ask"_s);
        {
            QSettings other(path, QSettings::IniFormat);
            other.setValue(u"imageQuality"_s, 0.5);
        }
        preferences.setExcludedBundles({u"a.b"_s});
        const QSettings stored(path, QSettings::IniFormat);
        QCOMPARE(stored.value(u"unknown"_s).toString(), u"1"_s);
        QCOMPARE(stored.value(u"lens"_s).toString(), u"ask"_s);
        QCOMPARE(stored.value(u"imageQuality"_s).toDouble(), 0.5);
        QCOMPARE(stored.value(u"excludedBundles"_s).toStringList(), QStringList{u"a.b"_s});
    }
};

QTEST_GUILESS_MAIN(ChoicesByHandTest)
#include "ChoicesByHandTest.moc"
