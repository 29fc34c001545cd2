// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/Preferences.h"

#include "MossbankCore/Support/Calendar.h"
#include "MossbankCore/Support/UserFolders.h"

#include <QDateTime>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

// The names under which the choices are stored.
const QString kInterval = u"interval"_s;
const QString kRetentionDays = u"retentionDays"_s;
const QString kImageQuality = u"imageQuality"_s;
const QString kSkipsUnchangedScreens = u"skipsUnchangedScreens"_s;
const QString kChangeMode = u"changeMode"_s;
const QString kAppearanceMode = u"appearanceMode"_s;
const QString kCapturesOnAppSwitch = u"capturesOnAppSwitch"_s;
const QString kUnchangedRefreshMinutes = u"unchangedRefreshMinutes"_s;
const QString kHasSeenSearchHint = u"hasSeenSearchHint"_s;
const QString kSavesAddresses = u"savesAddresses"_s;
const QString kRecordsAtLaunch = u"recordsAtLaunch"_s;
const QString kResumesAfterAway = u"resumesAfterAway"_s;
const QString kAnswerEngine = u"answerEngine"_s;
const QString kSearchesByMeaning = u"searchesByMeaning"_s;
const QString kEmbeddingModel = u"embeddingModel"_s;
const QString kOllamaModel = u"ollamaModel"_s;
const QString kLens = u"lens"_s;
const QString kExcludedBundles = u"excludedBundles"_s;
const QString kPausedUntil = u"pausedUntil"_s;
const QString kOpensAtLogin = u"opensAtLogin"_s;
const QString kOpensAtLoginPath = u"opensAtLoginPath"_s;
const QString kRecordsAfterRelaunch = u"recordsAfterRelaunch"_s;

/// Password managers and what shows keys. A default and no more: a stored list replaces it whole.
const QStringList kPasswordManagers = {
    u"com.1password.1password"_s,  u"com.agilebits.onepassword7"_s, u"com.apple.Passwords"_s,
    u"com.apple.keychainaccess"_s, u"com.bitwarden.desktop"_s,      u"com.lastpass.LastPass"_s,
    u"com.dashlane.Dashlane"_s};

} // namespace

Preferences::Preferences(const QString& path, const QStringList& passwordManagers, QObject* parent)
    : Preferences(std::optional(path), Sample(), passwordManagers, parent)
{
}

Preferences::Preferences(const Sample& sample, const QStringList& passwordManagers, QObject* parent)
    : Preferences(std::nullopt, sample, passwordManagers, parent)
{
}

Preferences::Preferences(const std::optional<QString>& path, const Sample& sample,
                         const QStringList& passwordManagers, QObject* parent)
    : QObject(parent)
    , m_file(path)
    , m_isDemo(!path)
    , m_interval(m_file.number(kInterval, 30.0))
    , m_retentionDays(m_file.wholeNumber(kRetentionDays, 30))
    , m_imageQuality(m_file.number(kImageQuality, 0.78))
    , m_skipsUnchangedScreens(m_file.flag(kSkipsUnchangedScreens, true))
    , m_changeMode(m_file.word(kChangeMode, u"flicker"_s))
    , m_appearanceMode(m_file.word(kAppearanceMode, u"system"_s))
    , m_capturesOnAppSwitch(m_file.flag(kCapturesOnAppSwitch, !m_isDemo))
    , m_unchangedRefreshMinutes(m_file.number(kUnchangedRefreshMinutes, 15.0))
    , m_hasSeenSearchHint(m_file.flag(kHasSeenSearchHint, m_isDemo))
    , m_savesAddresses(m_file.flag(kSavesAddresses, !m_isDemo))
    , m_recordsAtLaunch(m_file.flag(kRecordsAtLaunch, false))
    , m_resumesAfterAway(m_file.flag(kResumesAfterAway, true))
    , m_answerEngine(m_file.word(kAnswerEngine, sample.answerEngine))
    , m_searchesByMeaning(m_file.flag(kSearchesByMeaning, !sample.embeddingModel.isEmpty()))
    , m_embeddingModel(m_file.word(kEmbeddingModel, sample.embeddingModel))
    , m_ollamaModel(m_file.word(kOllamaModel, {}))
    , m_lens(m_file.word(kLens, u"moments"_s))
    , m_excludedBundles(bundleIDs(kPasswordManagers + passwordManagers))
{
}

QString Preferences::userPath()
{
    return UserFolders::configuration() + u"/Mossbank/Mossbank.ini"_s;
}

template <typename T>
void Preferences::choose(T Preferences::*choice, const T& value, const QString& key,
                         void (Preferences::*changed)())
{
    this->*choice = value;
    m_file.store(key, value);
    Q_EMIT(this->*changed)();
}

void Preferences::setInterval(double seconds)
{
    choose(&Preferences::m_interval, seconds, kInterval, &Preferences::intervalChanged);
}

void Preferences::setRetentionDays(int days)
{
    choose(&Preferences::m_retentionDays, days, kRetentionDays, &Preferences::retentionDaysChanged);
}

void Preferences::setImageQuality(double quality)
{
    choose(&Preferences::m_imageQuality, quality, kImageQuality, &Preferences::imageQualityChanged);
}

void Preferences::setSkipsUnchangedScreens(bool skips)
{
    choose(&Preferences::m_skipsUnchangedScreens, skips, kSkipsUnchangedScreens,
           &Preferences::skipsUnchangedScreensChanged);
}

void Preferences::setChangeMode(const QString& mode)
{
    choose(&Preferences::m_changeMode, mode, kChangeMode, &Preferences::changeModeChanged);
}

void Preferences::setAppearanceMode(const QString& mode)
{
    choose(&Preferences::m_appearanceMode, mode, kAppearanceMode,
           &Preferences::appearanceModeChanged);
}

void Preferences::setCapturesOnAppSwitch(bool captures)
{
    choose(&Preferences::m_capturesOnAppSwitch, captures, kCapturesOnAppSwitch,
           &Preferences::capturesOnAppSwitchChanged);
}

void Preferences::setUnchangedRefreshMinutes(double minutes)
{
    choose(&Preferences::m_unchangedRefreshMinutes, minutes, kUnchangedRefreshMinutes,
           &Preferences::unchangedRefreshMinutesChanged);
}

void Preferences::setHasSeenSearchHint(bool hasSeen)
{
    choose(&Preferences::m_hasSeenSearchHint, hasSeen, kHasSeenSearchHint,
           &Preferences::hasSeenSearchHintChanged);
}

void Preferences::setSavesAddresses(bool saves)
{
    choose(&Preferences::m_savesAddresses, saves, kSavesAddresses,
           &Preferences::savesAddressesChanged);
}

bool Preferences::hasChosenAddresses() const
{
    return m_file.flag(kSavesAddresses).has_value();
}

void Preferences::setRecordsAtLaunch(bool records)
{
    choose(&Preferences::m_recordsAtLaunch, records, kRecordsAtLaunch,
           &Preferences::recordsAtLaunchChanged);
}

void Preferences::setResumesAfterAway(bool resumes)
{
    choose(&Preferences::m_resumesAfterAway, resumes, kResumesAfterAway,
           &Preferences::resumesAfterAwayChanged);
}

void Preferences::setAnswerEngine(const QString& engine)
{
    choose(&Preferences::m_answerEngine, engine, kAnswerEngine, &Preferences::answerEngineChanged);
}

void Preferences::setSearchesByMeaning(bool searches)
{
    if (searches != m_searchesByMeaning)
        choose(&Preferences::m_searchesByMeaning, searches, kSearchesByMeaning,
               &Preferences::searchesByMeaningChanged);
    else
        m_file.store(kSearchesByMeaning, searches);
}

void Preferences::setEmbeddingModel(const QString& model)
{
    if (model != m_embeddingModel)
        choose(&Preferences::m_embeddingModel, model, kEmbeddingModel,
               &Preferences::embeddingModelChanged);
    else
        m_file.store(kEmbeddingModel, model);
}

void Preferences::setOllamaModel(const QString& model)
{
    choose(&Preferences::m_ollamaModel, model, kOllamaModel, &Preferences::ollamaModelChanged);
}

void Preferences::setLens(const QString& lens)
{
    choose(&Preferences::m_lens, lens, kLens, &Preferences::lensChanged);
}

void Preferences::setExcludedBundles(const QStringList& bundleIDs)
{
    m_excludedBundles = bundleIDs;
    m_file.store(kExcludedBundles, bundleIDs);
    makeSure();
    Q_EMIT excludedBundlesChanged();
}

QString Preferences::remarkBehindExclusions() const
{
    return m_file.remarkBehind(kExcludedBundles);
}

std::optional<Date> Preferences::pausedUntil() const
{
    return date(kPausedUntil);
}

void Preferences::setPausedUntil(Date date)
{
    storeDate(kPausedUntil, date);
}

void Preferences::removePausedUntil()
{
    m_file.remove(kPausedUntil);
}

bool Preferences::opensAtLogin() const
{
    return m_file.flag(kOpensAtLogin, false);
}

void Preferences::setOpensAtLogin(bool opens)
{
    m_file.store(kOpensAtLogin, opens);
}

QString Preferences::opensAtLoginPath() const
{
    return m_file.word(kOpensAtLoginPath, {});
}

void Preferences::setOpensAtLoginPath(const QString& path)
{
    m_file.store(kOpensAtLoginPath, path);
}

std::optional<Date> Preferences::recordsAfterRelaunch() const
{
    return date(kRecordsAfterRelaunch);
}

void Preferences::setRecordsAfterRelaunch(Date date)
{
    storeDate(kRecordsAfterRelaunch, date);
}

void Preferences::removeRecordsAfterRelaunch()
{
    m_file.remove(kRecordsAfterRelaunch);
}

void Preferences::makeSure()
{
    if (const auto reason = m_file.makeSure())
        Q_EMIT cannotBeStored(*reason);
}

std::optional<Date> Preferences::date(const QString& key) const
{
    const QDateTime stored = QDateTime::fromString(m_file.word(key, {}), Qt::ISODateWithMs).toUTC();
    if (!stored.isValid())
        return std::nullopt;
    constexpr double kMillisecondsASecond = 1000;
    return Date{static_cast<double>(stored.toMSecsSinceEpoch()) / kMillisecondsASecond};
}

void Preferences::storeDate(const QString& key, Date date)
{
    const QDateTime moment = Calendar(QTimeZone::utc(), QLocale::c()).local(date);
    m_file.store(key, moment.toString(Qt::ISODateWithMs));
    makeSure();
}

QStringList Preferences::bundleIDs(const QStringList& fallback) const
{
    QStringList identities;
    for (const QString& written : m_file.list(kExcludedBundles, fallback)) {
        if (const QString identity = written.trimmed(); !identity.isEmpty())
            identities.append(identity);
    }
    return identities;
}

} // namespace mossbank
