// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/Preferences.h"

#include "Mossbank/Model/Texts.h"
#include "MossbankCore/Support/Calendar.h"

#include <QDateTime>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <cmath>
#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

// The names under which the choices are stored.
const QString kInterval = u"interval"_s;
const QString kRetentionDays = u"retentionDays"_s;
const QString kImageQuality = u"imageQuality"_s;
const QString kSkipsUnchangedScreens = u"skipsUnchangedScreens"_s;
const QString kChangeMode = u"changeMode"_s;
const QString kCapturesOnAppSwitch = u"capturesOnAppSwitch"_s;
const QString kUnchangedRefreshMinutes = u"unchangedRefreshMinutes"_s;
const QString kSavesAddresses = u"savesAddresses"_s;
const QString kRecordsAtLaunch = u"recordsAtLaunch"_s;
const QString kResumesAfterAway = u"resumesAfterAway"_s;
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

/// The settings keep to themselves what went wrong, so it is tried once more, up to the point where
/// the file would be put in place of the one that is there.
QString whyUnwritable(const QString& path)
{
    constexpr int kSomeBytes = 4096;
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(QByteArray(kSomeBytes, '\n')) == kSomeBytes &&
        file.flush())
        return localized("%1 cannot be written").arg(path);
    return file.errorString();
}

} // namespace

Preferences::Preferences(const QString& path, const QStringList& passwordManagers, QObject* parent)
    : QObject(parent)
    , m_settings(path, QSettings::IniFormat)
    , m_isReadable(m_settings.status() == QSettings::NoError && !QFileInfo(path).isDir() &&
                   (!QFileInfo::exists(path) || QFileInfo(path).isReadable()))
    , m_interval(number(kInterval, 30.0))
    , m_retentionDays(wholeNumber(kRetentionDays, 30))
    , m_imageQuality(number(kImageQuality, 0.78))
    , m_skipsUnchangedScreens(flag(kSkipsUnchangedScreens, true))
    , m_changeMode(word(kChangeMode, u"flicker"_s))
    , m_capturesOnAppSwitch(flag(kCapturesOnAppSwitch, true))
    , m_unchangedRefreshMinutes(number(kUnchangedRefreshMinutes, 15.0))
    , m_savesAddresses(flag(kSavesAddresses, true))
    , m_recordsAtLaunch(flag(kRecordsAtLaunch, false))
    , m_resumesAfterAway(flag(kResumesAfterAway, true))
    , m_excludedBundles(list(kExcludedBundles, kPasswordManagers + passwordManagers))
{
}

QString Preferences::userPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           u"/Mossbank/Mossbank.ini"_s;
}

void Preferences::setInterval(double seconds)
{
    m_interval = seconds;
    m_settings.setValue(kInterval, seconds);
    Q_EMIT intervalChanged();
}

void Preferences::setRetentionDays(int days)
{
    m_retentionDays = days;
    m_settings.setValue(kRetentionDays, days);
    Q_EMIT retentionDaysChanged();
}

void Preferences::setImageQuality(double quality)
{
    m_imageQuality = quality;
    m_settings.setValue(kImageQuality, quality);
    Q_EMIT imageQualityChanged();
}

void Preferences::setSkipsUnchangedScreens(bool skips)
{
    m_skipsUnchangedScreens = skips;
    m_settings.setValue(kSkipsUnchangedScreens, skips);
    Q_EMIT skipsUnchangedScreensChanged();
}

void Preferences::setChangeMode(const QString& mode)
{
    m_changeMode = mode;
    m_settings.setValue(kChangeMode, mode);
    Q_EMIT changeModeChanged();
}

void Preferences::setCapturesOnAppSwitch(bool captures)
{
    m_capturesOnAppSwitch = captures;
    m_settings.setValue(kCapturesOnAppSwitch, captures);
    Q_EMIT capturesOnAppSwitchChanged();
}

void Preferences::setUnchangedRefreshMinutes(double minutes)
{
    m_unchangedRefreshMinutes = minutes;
    m_settings.setValue(kUnchangedRefreshMinutes, minutes);
    Q_EMIT unchangedRefreshMinutesChanged();
}

void Preferences::setSavesAddresses(bool saves)
{
    m_savesAddresses = saves;
    m_settings.setValue(kSavesAddresses, saves);
    Q_EMIT savesAddressesChanged();
}

bool Preferences::hasChosenAddresses() const
{
    return m_settings.contains(kSavesAddresses);
}

void Preferences::setRecordsAtLaunch(bool records)
{
    m_recordsAtLaunch = records;
    m_settings.setValue(kRecordsAtLaunch, records);
    Q_EMIT recordsAtLaunchChanged();
}

void Preferences::setResumesAfterAway(bool resumes)
{
    m_resumesAfterAway = resumes;
    m_settings.setValue(kResumesAfterAway, resumes);
    Q_EMIT resumesAfterAwayChanged();
}

void Preferences::setExcludedBundles(const QStringList& bundleIDs)
{
    m_excludedBundles = bundleIDs;
    m_settings.setValue(kExcludedBundles, bundleIDs);
    makeSure();
    Q_EMIT excludedBundlesChanged();
}

std::optional<Date> Preferences::pausedUntil() const
{
    const QDateTime stored =
        QDateTime::fromString(word(kPausedUntil, {}), Qt::ISODateWithMs).toUTC();
    if (!stored.isValid())
        return std::nullopt;
    constexpr double kMillisecondsASecond = 1000;
    return Date{static_cast<double>(stored.toMSecsSinceEpoch()) / kMillisecondsASecond};
}

void Preferences::setPausedUntil(Date date)
{
    const QDateTime moment = Calendar(QTimeZone::utc(), QLocale::c()).local(date);
    m_settings.setValue(kPausedUntil, moment.toString(Qt::ISODateWithMs));
    makeSure();
}

void Preferences::removePausedUntil()
{
    m_settings.remove(kPausedUntil);
}

bool Preferences::opensAtLogin() const
{
    return flag(kOpensAtLogin, false);
}

void Preferences::setOpensAtLogin(bool opens)
{
    m_settings.setValue(kOpensAtLogin, opens);
}

QString Preferences::opensAtLoginPath() const
{
    return word(kOpensAtLoginPath, {});
}

void Preferences::setOpensAtLoginPath(const QString& path)
{
    m_settings.setValue(kOpensAtLoginPath, path);
}

void Preferences::removeRecordsAfterRelaunch()
{
    m_settings.remove(kRecordsAfterRelaunch);
}

void Preferences::makeSure()
{
    m_settings.sync();
    // What went wrong with a file once, its object says for ever; a fresh one, what is so now.
    const bool isStored = QSettings(path(), QSettings::IniFormat).status() == QSettings::NoError;
    if (std::exchange(m_isStored, isStored) && !isStored)
        Q_EMIT cannotBeStored(whyUnwritable(path()));
}

double Preferences::number(const QString& key, double fallback) const
{
    bool isNumber = false;
    const double stored = m_settings.value(key).toDouble(&isNumber);
    return isNumber && std::isfinite(stored) ? stored : fallback;
}

int Preferences::wholeNumber(const QString& key, int fallback) const
{
    bool isNumber = false;
    const int stored = m_settings.value(key).toInt(&isNumber);
    return isNumber ? stored : fallback;
}

bool Preferences::flag(const QString& key, bool fallback) const
{
    const QVariant value = m_settings.value(key);
    if (value.typeId() == QMetaType::Bool)
        return value.toBool();
    // QVariant takes any text for true.
    const QString stored = word(key, {}).toLower();
    if (stored == u"true" || stored == u"1")
        return true;
    if (stored == u"false" || stored == u"0")
        return false;
    return fallback;
}

QString Preferences::word(const QString& key, const QString& fallback) const
{
    const QVariant stored = m_settings.value(key);
    return stored.typeId() == QMetaType::QString ? stored.toString() : fallback;
}

QStringList Preferences::list(const QString& key, const QStringList& fallback) const
{
    if (!m_settings.contains(key))
        return fallback;
    const QVariant stored = m_settings.value(key);
    // An empty list is stored as a value that is none, and a list of one as that one.
    if (!stored.isValid())
        return {};
    if (stored.typeId() != QMetaType::QStringList && stored.typeId() != QMetaType::QString)
        return fallback;
    QStringList items;
    for (QString item : stored.toStringList()) {
        item = item.trimmed();
        // Written by hand, it may be the name of the desktop file itself.
        if (item.endsWith(u".desktop"))
            item.chop(QStringView(u".desktop").size());
        if (!item.isEmpty())
            items.append(item);
    }
    return items;
}

} // namespace mossbank
