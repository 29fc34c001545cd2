// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/Preferences.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace mossbank;
using namespace Qt::StringLiterals;

class PreferencesTest : public QObject {
    Q_OBJECT

    static QString write(const QTemporaryDir& folder, const QByteArray& content)
    {
        const QString path = folder.filePath(u"choices.ini"_s);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("cannot write %s", qPrintable(path));
        return path;
    }

    static void compareWithDefaults(const Preferences& preferences)
    {
        QCOMPARE(preferences.interval(), 30.0);
        QCOMPARE(preferences.retentionDays(), 30);
        QCOMPARE(preferences.imageQuality(), 0.78);
        QCOMPARE(preferences.skipsUnchangedScreens(), true);
        QCOMPARE(preferences.changeMode(), u"flicker"_s);
        QCOMPARE(preferences.capturesOnAppSwitch(), true);
        QCOMPARE(preferences.unchangedRefreshMinutes(), 15.0);
        QCOMPARE(preferences.savesAddresses(), true);
        QCOMPARE(preferences.recordsAtLaunch(), false);
        QCOMPARE(preferences.resumesAfterAway(), true);
        QCOMPARE(preferences.excludedBundles(),
                 (QStringList{u"com.1password.1password"_s, u"com.agilebits.onepassword7"_s,
                              u"com.apple.Passwords"_s, u"com.apple.keychainaccess"_s,
                              u"com.bitwarden.desktop"_s, u"com.lastpass.LastPass"_s,
                              u"com.dashlane.Dashlane"_s}));
    }

private Q_SLOTS:
    void aFreshInstallHasTheDefaults()
    {
        const QTemporaryDir folder;
        compareWithDefaults(Preferences(folder.filePath(u"not there/choices.ini"_s)));
    }

    void theSystemsOwnPasswordManagersFollowThoseOfEverySystem()
    {
        const QTemporaryDir folder;
        const QStringList ofEverySystem =
            Preferences(folder.filePath(u"none.ini"_s)).excludedBundles();
        const QStringList own = {u"keepassxc"_s, u"seahorse"_s};
        QCOMPARE(Preferences(folder.filePath(u"none.ini"_s), own).excludedBundles(),
                 ofEverySystem + own);
        const QString stored = write(folder, "[General]\nexcludedBundles=a.b\n");
        QCOMPARE(Preferences(stored, own).excludedBundles(), QStringList{u"a.b"_s});
    }

    void valuesOfTheWrongTypeCountAsAbsent()
    {
        const QTemporaryDir folder;
        const Preferences preferences(write(folder, R"([General]
interval=often
retentionDays=1.5
imageQuality=nan
skipsUnchangedScreens=perhaps
capturesOnAppSwitch=
unchangedRefreshMinutes=1 hour
savesAddresses=@ByteArray(x)
recordsAtLaunch=2
resumesAfterAway=no
changeMode=any, flicker
excludedBundles=@Size(3 4)
)"));
        compareWithDefaults(preferences);
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
        const Preferences preferences(write(folder, "[General]\n" + written + "\n"));
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
        QTest::newRow("the names of desktop files")
            << QByteArray("excludedBundles=a.b.desktop, c.d") << QStringList{u"a.b"_s, u"c.d"_s};
        QTest::newRow("a comma too many")
            << QByteArray("excludedBundles=a.b, ,c.d") << QStringList{u"a.b"_s, u"c.d"_s};
    }
    void aListWrittenByHandIsReadAsItIsMeant()
    {
        QFETCH(QByteArray, written);
        QFETCH(QStringList, list);
        const QTemporaryDir folder;
        const Preferences preferences(write(folder, "[General]\n" + written + "\n"));
        QCOMPARE(preferences.excludedBundles(), list);
    }

    void aFileChangedMeanwhileChangesNothingBehindAnybodysBack()
    {
        const QTemporaryDir folder;
        const QString path = write(folder, "[General]\nexcludedBundles=a.b\n");
        Preferences preferences(path);
        write(folder, "[General]\nexcludedBundles=c.d\ninterval=7\n");
        preferences.removeRecordsAfterRelaunch();
        QSettings(path, QSettings::IniFormat).sync();
        QCOMPARE(preferences.excludedBundles(), QStringList{u"a.b"_s});
        QCOMPARE(preferences.interval(), 30.0);
    }

    void aFileOfNonsenseCountsAsEmpty()
    {
        const QTemporaryDir folder;
        QByteArray nonsense;
        for (int byte = 0; byte < 4096; ++byte)
            nonsense.append(static_cast<char>((byte * 73 + 11) % 256));
        compareWithDefaults(Preferences(write(folder, nonsense)));
    }

    void aFileThatCannotBeReadIsKnown()
    {
        const QTemporaryDir folder;
        QVERIFY(Preferences(folder.filePath(u"not there.ini"_s)).isReadable());
        QVERIFY(Preferences(write(folder, "[General]\ninterval=7\n")).isReadable());
        QVERIFY(!Preferences(folder.path()).isReadable());
        QVERIFY(!Preferences(write(folder, "interval 7\n[General\n=\n")).isReadable());
    }

    void choicesSurviveARestart()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"choices.ini"_s);
        {
            Preferences preferences(path);
            preferences.setInterval(2.5);
            preferences.setImageQuality(0.4);
            preferences.setSkipsUnchangedScreens(false);
            preferences.setChangeMode(u"obvious"_s);
            preferences.setCapturesOnAppSwitch(false);
            preferences.setUnchangedRefreshMinutes(60);
            preferences.setSavesAddresses(false);
            preferences.setRecordsAtLaunch(true);
            preferences.setResumesAfterAway(false);
            preferences.setExcludedBundles({u"a"_s, u"b, with a comma"_s});
        }
        const Preferences again(path);
        QCOMPARE(again.interval(), 2.5);
        QCOMPARE(again.imageQuality(), 0.4);
        QCOMPARE(again.skipsUnchangedScreens(), false);
        QCOMPARE(again.changeMode(), u"obvious"_s);
        QCOMPARE(again.capturesOnAppSwitch(), false);
        QCOMPARE(again.unchangedRefreshMinutes(), 60.0);
        QCOMPARE(again.savesAddresses(), false);
        QCOMPARE(again.recordsAtLaunch(), true);
        QCOMPARE(again.resumesAfterAway(), false);
        QCOMPARE(again.excludedBundles(), (QStringList{u"a"_s, u"b, with a comma"_s}));
    }

    void aListStoredEmptyStaysEmpty()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"choices.ini"_s);
        Preferences(path).setExcludedBundles({});
        QCOMPARE(Preferences(path).excludedBundles(), QStringList());
    }

    void aValueOutsideItsBoundsStandsAsItIs()
    {
        const QTemporaryDir folder;
        const Preferences preferences(write(folder, "[General]\ninterval=7\nimageQuality=9\n"));
        QCOMPARE(preferences.interval(), 7.0);
        QCOMPARE(preferences.imageQuality(), 9.0);
    }

    void aSetterTellsAlsoOfTheSameValue()
    {
        const QTemporaryDir folder;
        Preferences preferences(folder.filePath(u"choices.ini"_s));
        QSignalSpy changes(&preferences, &Preferences::intervalChanged);
        preferences.setInterval(10);
        preferences.setInterval(10);
        QCOMPARE(changes.count(), 2);
    }
};

QTEST_GUILESS_MAIN(PreferencesTest)
#include "PreferencesTest.moc"
