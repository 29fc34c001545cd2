// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/Preferences.h"

#include "tests/Model/WrittenChoices.h"

#include <QFile>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace mossbank;
using namespace Qt::StringLiterals;

class PreferencesTest : public QObject {
    Q_OBJECT

    /// Every choice, as it is by no default.
    static void chooseAll(const QString& path)
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
        preferences.setRetentionDays(0);
        preferences.setAppearanceMode(u"dark"_s);
        preferences.setHasSeenSearchHint(true);
        preferences.setHasSeenClosingNotice(true);
        preferences.setAnswerEngine(u"local"_s);
        preferences.setSearchesByMeaning(true);
        preferences.setEmbeddingModel(u"nomic"_s);
        preferences.setOllamaModel(u"a model, with a comma"_s);
        preferences.setLens(u"timeline"_s);
        preferences.setPausedUntil(Date{1'700'037'900.25});
        preferences.setRecordsAfterRelaunch(Date{1'700'037'901});
        preferences.setOpensAtLogin(true);
        preferences.setOpensAtLoginPath(u"/opt/a b/mossbank"_s);
        preferences.setExcludedBundles({u"a"_s, u"b, with a comma"_s});
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
        QCOMPARE(preferences.appearanceMode(), u"system"_s);
        QCOMPARE(preferences.hasSeenSearchHint(), false);
        QCOMPARE(preferences.hasSeenClosingNotice(), false);
        QCOMPARE(preferences.answerEngine(), u"apple"_s);
        QCOMPARE(preferences.searchesByMeaning(), false);
        QCOMPARE(preferences.embeddingModel(), QString());
        QCOMPARE(preferences.ollamaModel(), QString());
        QCOMPARE(preferences.lens(), u"moments"_s);
        QCOMPARE(preferences.isDemo(), false);
        QCOMPARE(preferences.pausedUntil(), std::optional<Date>());
        QCOMPARE(preferences.recordsAfterRelaunch(), std::optional<Date>());
        QCOMPARE(preferences.opensAtLogin(), false);
        QCOMPARE(preferences.opensAtLoginPath(), QString());
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
        const QString stored = writtenChoices(folder, "[General]\nexcludedBundles=a.b\n");
        QCOMPARE(Preferences(stored, own).excludedBundles(), QStringList{u"a.b"_s});
    }

    void valuesOfTheWrongTypeCountAsAbsent()
    {
        const QTemporaryDir folder;
        const Preferences preferences(writtenChoices(folder, R"([General]
interval=often
retentionDays=1.5
imageQuality=nan
skipsUnchangedScreens=perhaps
capturesOnAppSwitch=
unchangedRefreshMinutes=1 hour
savesAddresses=@ByteArray(x)
recordsAtLaunch=2
resumesAfterAway=never
changeMode=any, flicker
appearanceMode=light, dark
hasSeenSearchHint=seen
hasSeenClosingNotice=2
answerEngine=@Size(3 4)
searchesByMeaning=1.0
embeddingModel=a, b
ollamaModel=@ByteArray(x)
lens=@Invalid()
pausedUntil=1700037900
recordsAfterRelaunch=tomorrow
opensAtLogin=@Size(3 4)
opensAtLoginPath=a, b
excludedBundles=@Size(3 4)
)"));
        compareWithDefaults(preferences);
    }

    void whatTheProgramWritesItselfIsNoSlip()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"choices.ini"_s);
        chooseAll(path);
        const Preferences preferences(path);
        QCOMPARE(QSettings(path, QSettings::IniFormat).allKeys().size(), 23);
        QCOMPARE(preferences.unknownKeys(), QStringList());
        QCOMPARE(preferences.unusableKeys(), QStringList());
    }

    void aFileOfNonsenseCountsAsEmpty()
    {
        const QTemporaryDir folder;
        QByteArray nonsense;
        for (int byte = 0; byte < 4096; ++byte)
            nonsense.append(static_cast<char>((byte * 73 + 11) % 256));
        compareWithDefaults(Preferences(writtenChoices(folder, nonsense)));
    }

    void aFileThatCannotBeReadIsKnown()
    {
        const QTemporaryDir folder;
        QVERIFY(Preferences(folder.filePath(u"not there.ini"_s)).isReadable());
        QVERIFY(Preferences(writtenChoices(folder, "[General]\ninterval=7\n")).isReadable());
        QVERIFY(!Preferences(folder.path()).isReadable());
        QVERIFY(!Preferences(writtenChoices(folder, "interval 7\n[General\n=\n")).isReadable());
    }

    void choicesSurviveARestart()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"choices.ini"_s);
        chooseAll(path);
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
        QCOMPARE(again.retentionDays(), 0);
        QCOMPARE(again.appearanceMode(), u"dark"_s);
        QCOMPARE(again.hasSeenSearchHint(), true);
        QCOMPARE(again.hasSeenClosingNotice(), true);
        QCOMPARE(again.answerEngine(), u"local"_s);
        QCOMPARE(again.searchesByMeaning(), true);
        QCOMPARE(again.embeddingModel(), u"nomic"_s);
        QCOMPARE(again.ollamaModel(), u"a model, with a comma"_s);
        QCOMPARE(again.lens(), u"timeline"_s);
        QCOMPARE(again.pausedUntil(), std::optional(Date{1'700'037'900.25}));
        QCOMPARE(again.recordsAfterRelaunch(), std::optional(Date{1'700'037'901}));
        QCOMPARE(again.opensAtLogin(), true);
        QCOMPARE(again.opensAtLoginPath(), u"/opt/a b/mossbank"_s);
        QCOMPARE(again.excludedBundles(), (QStringList{u"a"_s, u"b, with a comma"_s}));
    }

    void aListStoredEmptyStaysEmpty()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"choices.ini"_s);
        Preferences(path).setExcludedBundles({});
        QCOMPARE(Preferences(path).excludedBundles(), QStringList());
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

    void whatIsDearToRedoIsToldOnlyWhenItIsAnother()
    {
        const QTemporaryDir folder;
        Preferences preferences(folder.filePath(u"choices.ini"_s));
        QSignalSpy meaning(&preferences, &Preferences::searchesByMeaningChanged);
        QSignalSpy model(&preferences, &Preferences::embeddingModelChanged);
        preferences.setSearchesByMeaning(false);
        preferences.setEmbeddingModel({});
        QCOMPARE(meaning.count() + model.count(), 0);
        QCOMPARE(QSettings(preferences.path(), QSettings::IniFormat).allKeys().size(), 2);
        preferences.setSearchesByMeaning(true);
        preferences.setEmbeddingModel(u"nomic"_s);
        QCOMPARE(meaning.count(), 1);
        QCOMPARE(model.count(), 1);
        preferences.setSearchesByMeaning(true);
        preferences.setEmbeddingModel(u"nomic"_s);
        QCOMPARE(meaning.count() + model.count(), 2);
    }

    void theSampleLibraryHasItsOwn()
    {
        const Preferences sample(Preferences::Sample{}, {u"keepassxc"_s});
        const QTemporaryDir folder;
        const Preferences fresh(folder.filePath(u"none.ini"_s), {u"keepassxc"_s});
        QVERIFY(sample.isDemo());
        QVERIFY(sample.isReadable());
        QVERIFY(!sample.hasChosenAddresses());
        QCOMPARE(sample.path(), QString());
        QCOMPARE(sample.capturesOnAppSwitch(), false);
        QCOMPARE(sample.hasSeenSearchHint(), true);
        QCOMPARE(sample.hasSeenClosingNotice(), true);
        QCOMPARE(sample.savesAddresses(), false);
        QCOMPARE(sample.answerEngine(), u"apple"_s);
        QCOMPARE(sample.searchesByMeaning(), false);
        QCOMPARE(sample.embeddingModel(), QString());
        // The rest is as everywhere.
        QCOMPARE(sample.interval(), fresh.interval());
        QCOMPARE(sample.retentionDays(), fresh.retentionDays());
        QCOMPARE(sample.imageQuality(), fresh.imageQuality());
        QCOMPARE(sample.skipsUnchangedScreens(), fresh.skipsUnchangedScreens());
        QCOMPARE(sample.changeMode(), fresh.changeMode());
        QCOMPARE(sample.appearanceMode(), fresh.appearanceMode());
        QCOMPARE(sample.unchangedRefreshMinutes(), fresh.unchangedRefreshMinutes());
        QCOMPARE(sample.recordsAtLaunch(), fresh.recordsAtLaunch());
        QCOMPARE(sample.resumesAfterAway(), fresh.resumesAfterAway());
        QCOMPARE(sample.lens(), fresh.lens());
        QCOMPARE(sample.excludedBundles(), fresh.excludedBundles());
        const Preferences told(
            Preferences::Sample{.answerEngine = u"local"_s, .embeddingModel = u"nomic"_s});
        QCOMPARE(told.answerEngine(), u"local"_s);
        QCOMPARE(told.embeddingModel(), u"nomic"_s);
        QCOMPARE(told.searchesByMeaning(), true);
    }

    void theSampleLibraryStoresNothing()
    {
        const QTemporaryDir folder;
        const QByteArray before = qgetenv("XDG_CONFIG_HOME");
        qputenv("XDG_CONFIG_HOME", folder.path().toLocal8Bit());
        Preferences sample{Preferences::Sample{}};
        QSignalSpy changes(&sample, &Preferences::intervalChanged);
        QSignalSpy failures(&sample, &Preferences::cannotBeStored);
        sample.setInterval(5);
        sample.setExcludedBundles({});
        sample.setPausedUntil(Date{1'700'037'900});
        sample.setRecordsAfterRelaunch(Date{1'700'037'900});
        sample.setOpensAtLogin(true);
        // It counts while the program runs.
        QCOMPARE(sample.interval(), 5.0);
        QCOMPARE(changes.count(), 1);
        QCOMPARE(sample.excludedBundles(), QStringList());
        QCOMPARE(failures.count(), 0);
        QCOMPARE(sample.pausedUntil(), std::optional<Date>());
        QCOMPARE(sample.recordsAfterRelaunch(), std::optional<Date>());
        QCOMPARE(sample.opensAtLogin(), false);
        QVERIFY(QDir(folder.path()).isEmpty());
        qputenv("XDG_CONFIG_HOME", before);
    }
};

QTEST_GUILESS_MAIN(PreferencesTest)
#include "PreferencesTest.moc"
