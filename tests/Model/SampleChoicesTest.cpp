// SPDX-License-Identifier: Apache-2.0
//
// Whoever looks around in the sample library changes nothing of the own choices, whichever they
// set.
#include "Mossbank/Model/Preferences.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <map>
#include <memory>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

constexpr Date kMoment = {1'700'037'900};

using Setter = std::function<void(Preferences&)>;

const std::map<QString, Setter>& setters()
{
    static const std::map<QString, Setter> all = {
        {u"setInterval"_s,
         [](Preferences& choices) {
             choices.setInterval(5);
         }},
        {u"setRetentionDays"_s,
         [](Preferences& choices) {
             choices.setRetentionDays(1);
         }},
        {u"setImageQuality"_s,
         [](Preferences& choices) {
             choices.setImageQuality(0.1);
         }},
        {u"setSkipsUnchangedScreens"_s,
         [](Preferences& choices) {
             choices.setSkipsUnchangedScreens(false);
         }},
        {u"setChangeMode"_s,
         [](Preferences& choices) {
             choices.setChangeMode(u"obvious"_s);
         }},
        {u"setAppearanceMode"_s,
         [](Preferences& choices) {
             choices.setAppearanceMode(u"dark"_s);
         }},
        {u"setCapturesOnAppSwitch"_s,
         [](Preferences& choices) {
             choices.setCapturesOnAppSwitch(false);
         }},
        {u"setUnchangedRefreshMinutes"_s,
         [](Preferences& choices) {
             choices.setUnchangedRefreshMinutes(1);
         }},
        {u"setHasSeenSearchHint"_s,
         [](Preferences& choices) {
             choices.setHasSeenSearchHint(false);
         }},
        {u"setHasSeenClosingNotice"_s,
         [](Preferences& choices) {
             choices.setHasSeenClosingNotice(false);
         }},
        {u"setSavesAddresses"_s,
         [](Preferences& choices) {
             choices.setSavesAddresses(false);
         }},
        {u"setRecordsAtLaunch"_s,
         [](Preferences& choices) {
             choices.setRecordsAtLaunch(false);
         }},
        {u"setResumesAfterAway"_s,
         [](Preferences& choices) {
             choices.setResumesAfterAway(false);
         }},
        {u"setAnswerEngine"_s,
         [](Preferences& choices) {
             choices.setAnswerEngine(u"local"_s);
         }},
        {u"setSearchesByMeaning"_s,
         [](Preferences& choices) {
             choices.setSearchesByMeaning(true);
         }},
        {u"setEmbeddingModel"_s,
         [](Preferences& choices) {
             choices.setEmbeddingModel(u"moss"_s);
         }},
        {u"setOllamaModel"_s,
         [](Preferences& choices) {
             choices.setOllamaModel(u"reed"_s);
         }},
        {u"setLens"_s,
         [](Preferences& choices) {
             choices.setLens(u"ask"_s);
         }},
        {u"setExcludedBundles"_s,
         [](Preferences& choices) {
             choices.setExcludedBundles({});
         }},
        {u"setPausedUntil"_s,
         [](Preferences& choices) {
             choices.setPausedUntil(kMoment);
         }},
        {u"removePausedUntil"_s,
         [](Preferences& choices) {
             choices.removePausedUntil();
         }},
        {u"setOpensAtLogin"_s,
         [](Preferences& choices) {
             choices.setOpensAtLogin(false);
         }},
        {u"setOpensAtLoginPath"_s,
         [](Preferences& choices) {
             choices.setOpensAtLoginPath(u"/elsewhere"_s);
         }},
        {u"setRecordsAfterRelaunch"_s,
         [](Preferences& choices) {
             choices.setRecordsAfterRelaunch(kMoment);
         }},
        {u"removeRecordsAfterRelaunch"_s,
         [](Preferences& choices) {
             choices.removeRecordsAfterRelaunch();
         }},
    };
    return all;
}

/// Choices of somebody who has made all of them, and a remark.
const QByteArray kOwnChoices = R"([General]
; mine
interval=12
retentionDays=7
imageQuality=0.5
skipsUnchangedScreens=true
changeMode=any
appearanceMode=light
capturesOnAppSwitch=true
unchangedRefreshMinutes=20
hasSeenSearchHint=true
hasSeenClosingNotice=true
savesAddresses=true
recordsAtLaunch=true
resumesAfterAway=true
answerEngine=apple
searchesByMeaning=false
embeddingModel=fern
ollamaModel=fern
lens=timeline
excludedBundles=org.example.Heron, org.example.Reed
pausedUntil=2026-01-01T08:00:00.000Z
opensAtLogin=true
opensAtLoginPath=/here
recordsAfterRelaunch=2026-01-01T08:00:00.000Z
)";

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList namesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

} // namespace

class SampleChoicesTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_folder;
    QByteArray m_previous;

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_previous = qgetenv("XDG_CONFIG_HOME");
        qputenv("XDG_CONFIG_HOME", m_folder->path().toLocal8Bit());
        QFile file(Preferences::userPath());
        QVERIFY(QDir().mkpath(QFileInfo(file).path()));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(kOwnChoices), kOwnChoices.size());
    }
    void cleanup() { qputenv("XDG_CONFIG_HOME", m_previous); }

    void everySetterIsTried()
    {
        const QString header = QString::fromUtf8(
            contentOf(QStringLiteral(MOSSBANK_SOURCE_DIR "/Mossbank/Model/Preferences.h")));
        const QRegularExpression declaration(uR"(\bvoid ((?:set|remove)\w+)\()"_s);
        QStringList declared;
        for (const auto& match : declaration.globalMatch(header))
            declared.append(match.captured(1));
        declared.sort();
        QStringList tried;
        for (const auto& [name, setter] : setters())
            tried.append(name);
        tried.sort();
        QCOMPARE(tried, declared);
    }

    void whatIsSetInTheSampleLeavesTheOwnChoicesAsTheyAre_data()
    {
        QTest::addColumn<QString>("setter");
        for (const auto& [name, setter] : setters())
            QTest::newRow(qPrintable(name)) << name;
    }
    void whatIsSetInTheSampleLeavesTheOwnChoicesAsTheyAre()
    {
        QFETCH(QString, setter);
        const QString path = Preferences::userPath();
        {
            Preferences sample{Preferences::Sample{.embeddingModel = u"sedge"_s}};
            setters().at(setter)(sample);
            QCoreApplication::processEvents();
        }
        QCoreApplication::processEvents();
        QCOMPARE(contentOf(path), kOwnChoices);
        QCOMPARE(namesIn(QFileInfo(path).path()), QStringList{QFileInfo(path).fileName()});
        QCOMPARE(namesIn(m_folder->path()).size(), 1);
        // Over the own ones it would not have.
        {
            Preferences own(path);
            setters().at(setter)(own);
        }
        QVERIFY(contentOf(path) != kOwnChoices);
    }
};

QTEST_GUILESS_MAIN(SampleChoicesTest)
#include "SampleChoicesTest.moc"
