// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/Preferences.h"

#include "MossbankCore/Support/Calendar.h"
#include "MossbankCore/Support/UserFolders.h"

#include <QDateTime>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

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
const QString kHasSeenClosingNotice = u"hasSeenClosingNotice"_s;
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

enum class Kind { Number, WholeNumber, Flag, Word, Moment, List };

/// All of them, and what they are.
const std::vector<std::pair<QString, Kind>> kChoices = {
    {kInterval, Kind::Number},
    {kRetentionDays, Kind::WholeNumber},
    {kImageQuality, Kind::Number},
    {kSkipsUnchangedScreens, Kind::Flag},
    {kChangeMode, Kind::Word},
    {kAppearanceMode, Kind::Word},
    {kCapturesOnAppSwitch, Kind::Flag},
    {kUnchangedRefreshMinutes, Kind::Number},
    {kHasSeenSearchHint, Kind::Flag},
    {kHasSeenClosingNotice, Kind::Flag},
    {kSavesAddresses, Kind::Flag},
    {kRecordsAtLaunch, Kind::Flag},
    {kResumesAfterAway, Kind::Flag},
    {kAnswerEngine, Kind::Word},
    {kSearchesByMeaning, Kind::Flag},
    {kEmbeddingModel, Kind::Word},
    {kOllamaModel, Kind::Word},
    {kLens, Kind::Word},
    {kExcludedBundles, Kind::List},
    {kPausedUntil, Kind::Moment},
    {kOpensAtLogin, Kind::Flag},
    {kOpensAtLoginPath, Kind::Word},
    {kRecordsAfterRelaunch, Kind::Moment},
};

std::optional<Date> dateOf(const QString& written)
{
    const QDateTime moment = QDateTime::fromString(written, Qt::ISODateWithMs).toUTC();
    if (!moment.isValid())
        return std::nullopt;
    constexpr double kMillisecondsASecond = 1000;
    return Date{static_cast<double>(moment.toMSecsSinceEpoch()) / kMillisecondsASecond};
}

bool isOfKind(const StoredChoices& file, const QString& key, Kind kind)
{
    switch (kind) {
    case Kind::Number:
        return !std::isnan(file.number(key, std::nan("")));
    case Kind::WholeNumber:
        return file.wholeNumber(key, 0) == file.wholeNumber(key, 1);
    case Kind::Flag:
        return file.flag(key).has_value();
    case Kind::Word:
        return file.word(key, u"a"_s) == file.word(key, u"b"_s);
    case Kind::Moment:
        return dateOf(file.word(key, {})).has_value();
    case Kind::List:
        return file.list(key, {u"a"_s}) == file.list(key, {u"b"_s});
    }
    return false;
}

/// As a list is written by hand.
QStringList trimmed(const QStringList& written)
{
    QStringList identities;
    for (const QString& entry : written) {
        if (const QString identity = entry.trimmed(); !identity.isEmpty())
            identities.append(identity);
    }
    return identities;
}

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
    , m_hasSeenClosingNotice(m_file.flag(kHasSeenClosingNotice, m_isDemo))
    , m_savesAddresses(m_file.flag(kSavesAddresses, !m_isDemo))
    , m_recordsAtLaunch(m_file.flag(kRecordsAtLaunch, false))
    , m_resumesAfterAway(m_file.flag(kResumesAfterAway, true))
    , m_answerEngine(m_file.word(kAnswerEngine, sample.answerEngine))
    , m_searchesByMeaning(m_file.flag(kSearchesByMeaning, !sample.embeddingModel.isEmpty()))
    , m_embeddingModel(m_file.word(kEmbeddingModel, sample.embeddingModel))
    , m_ollamaModel(m_file.word(kOllamaModel, {}))
    , m_lens(m_file.word(kLens, u"moments"_s))
    , m_excludedBundles(
          trimmed(m_file.list(kExcludedBundles, kPasswordManagers + passwordManagers)))
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
    store(key, value);
    Q_EMIT(this->*changed)();
}

void Preferences::setInterval(double seconds)
{
    choose(&Preferences::m_interval, seconds, kInterval, &Preferences::intervalChanged);
}

void Preferences::setRetentionDays(int days)
{
    m_isRetentionChosen = true;
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

void Preferences::setHasSeenClosingNotice(bool hasSeen)
{
    choose(&Preferences::m_hasSeenClosingNotice, hasSeen, kHasSeenClosingNotice,
           &Preferences::hasSeenClosingNoticeChanged);
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
        store(kSearchesByMeaning, searches);
}

void Preferences::setEmbeddingModel(const QString& model)
{
    if (model != m_embeddingModel)
        choose(&Preferences::m_embeddingModel, model, kEmbeddingModel,
               &Preferences::embeddingModelChanged);
    else
        store(kEmbeddingModel, model);
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
    // Whoever has written one into the file meanwhile wants it excluded as well.
    QStringList all = bundleIDs;
    for (const QString& added : trimmed(m_file.takeAddedByOthers(kExcludedBundles))) {
        if (!all.contains(added))
            all.append(added);
    }
    choose(&Preferences::m_excludedBundles, all, kExcludedBundles,
           &Preferences::excludedBundlesChanged);
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
    remove(kPausedUntil);
}

bool Preferences::opensAtLogin() const
{
    return m_file.flag(kOpensAtLogin, false);
}

void Preferences::setOpensAtLogin(bool opens)
{
    store(kOpensAtLogin, opens);
}

QString Preferences::opensAtLoginPath() const
{
    return m_file.word(kOpensAtLoginPath, {});
}

void Preferences::setOpensAtLoginPath(const QString& path)
{
    store(kOpensAtLoginPath, path);
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
    remove(kRecordsAfterRelaunch);
}

void Preferences::store(const QString& key, const QVariant& value)
{
    const bool wasStored = m_file.isStored();
    tell(wasStored, m_file.store(key, value));
}

void Preferences::remove(const QString& key)
{
    const bool wasStored = m_file.isStored();
    tell(wasStored, m_file.remove(key));
}

void Preferences::tell(bool wasStored, const std::optional<QString>& problem)
{
    if (problem)
        Q_EMIT cannotBeStored(*problem);
    else if (!wasStored && m_file.isStored())
        Q_EMIT storedAgain();
}

bool Preferences::isRetentionKnown() const
{
    return m_file.isReadable() || m_isRetentionChosen;
}

QStringList Preferences::unknownKeys() const
{
    QStringList keys;
    for (const QString& key : m_file.keys()) {
        if (std::ranges::find(kChoices, key, &std::pair<QString, Kind>::first) == kChoices.end())
            keys.append(key);
    }
    return keys;
}

QStringList Preferences::unusableKeys() const
{
    QStringList keys;
    for (const auto& [key, kind] : kChoices) {
        if (m_file.contains(key) && !isOfKind(m_file, key, kind))
            keys.append(key);
    }
    return keys;
}

std::optional<Date> Preferences::date(const QString& key) const
{
    return dateOf(m_file.word(key, {}));
}

void Preferences::storeDate(const QString& key, Date date)
{
    const QDateTime moment = Calendar(QTimeZone::utc(), QLocale::c()).local(date);
    store(key, moment.toString(Qt::ISODateWithMs));
}

} // namespace mossbank
