// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/Preferences.h"

#include <QStandardPaths>

#include <cmath>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

// The names under which the choices are stored.
const QString kInterval = u"interval"_s;
const QString kImageQuality = u"imageQuality"_s;
const QString kSkipsUnchangedScreens = u"skipsUnchangedScreens"_s;
const QString kChangeMode = u"changeMode"_s;
const QString kCapturesOnAppSwitch = u"capturesOnAppSwitch"_s;
const QString kUnchangedRefreshMinutes = u"unchangedRefreshMinutes"_s;
const QString kSavesAddresses = u"savesAddresses"_s;
const QString kRecordsAtLaunch = u"recordsAtLaunch"_s;
const QString kResumesAfterAway = u"resumesAfterAway"_s;
const QString kExcludedBundles = u"excludedBundles"_s;
const QString kRecordsAfterRelaunch = u"recordsAfterRelaunch"_s;

/// Password managers. A default and no more: a stored list replaces it whole.
QStringList passwordManagers()
{
    return {u"com.1password.1password"_s, u"com.agilebits.onepassword7"_s,
            u"com.apple.Passwords"_s,     u"com.apple.keychainaccess"_s,
            u"com.bitwarden.desktop"_s,   u"com.lastpass.LastPass"_s,
            u"com.dashlane.Dashlane"_s};
}

} // namespace

Preferences::Preferences(const QString& path, QObject* parent)
    : QObject(parent)
    , m_settings(path, QSettings::IniFormat)
{
}

QString Preferences::userPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           u"/Mossbank/Mossbank.ini"_s;
}

double Preferences::interval() const
{
    return number(kInterval, 30.0);
}

void Preferences::setInterval(double seconds)
{
    m_settings.setValue(kInterval, seconds);
    Q_EMIT intervalChanged();
}

double Preferences::imageQuality() const
{
    return number(kImageQuality, 0.78);
}

void Preferences::setImageQuality(double quality)
{
    m_settings.setValue(kImageQuality, quality);
    Q_EMIT imageQualityChanged();
}

bool Preferences::skipsUnchangedScreens() const
{
    return flag(kSkipsUnchangedScreens, true);
}

void Preferences::setSkipsUnchangedScreens(bool skips)
{
    m_settings.setValue(kSkipsUnchangedScreens, skips);
    Q_EMIT skipsUnchangedScreensChanged();
}

QString Preferences::changeMode() const
{
    return m_settings.value(kChangeMode, u"flicker"_s).toString();
}

void Preferences::setChangeMode(const QString& mode)
{
    m_settings.setValue(kChangeMode, mode);
    Q_EMIT changeModeChanged();
}

bool Preferences::capturesOnAppSwitch() const
{
    return flag(kCapturesOnAppSwitch, true);
}

void Preferences::setCapturesOnAppSwitch(bool captures)
{
    m_settings.setValue(kCapturesOnAppSwitch, captures);
    Q_EMIT capturesOnAppSwitchChanged();
}

double Preferences::unchangedRefreshMinutes() const
{
    return number(kUnchangedRefreshMinutes, 15.0);
}

void Preferences::setUnchangedRefreshMinutes(double minutes)
{
    m_settings.setValue(kUnchangedRefreshMinutes, minutes);
    Q_EMIT unchangedRefreshMinutesChanged();
}

bool Preferences::savesAddresses() const
{
    return flag(kSavesAddresses, true);
}

void Preferences::setSavesAddresses(bool saves)
{
    m_settings.setValue(kSavesAddresses, saves);
    Q_EMIT savesAddressesChanged();
}

bool Preferences::recordsAtLaunch() const
{
    return flag(kRecordsAtLaunch, false);
}

void Preferences::setRecordsAtLaunch(bool records)
{
    m_settings.setValue(kRecordsAtLaunch, records);
    Q_EMIT recordsAtLaunchChanged();
}

bool Preferences::resumesAfterAway() const
{
    return flag(kResumesAfterAway, true);
}

void Preferences::setResumesAfterAway(bool resumes)
{
    m_settings.setValue(kResumesAfterAway, resumes);
    Q_EMIT resumesAfterAwayChanged();
}

QStringList Preferences::excludedBundles() const
{
    // An empty list is stored as an invalid value: the key tells it from no list at all.
    if (!m_settings.contains(kExcludedBundles))
        return passwordManagers();
    return m_settings.value(kExcludedBundles).toStringList();
}

void Preferences::setExcludedBundles(const QStringList& bundleIDs)
{
    m_settings.setValue(kExcludedBundles, bundleIDs);
    Q_EMIT excludedBundlesChanged();
}

void Preferences::removeRecordsAfterRelaunch()
{
    m_settings.remove(kRecordsAfterRelaunch);
}

double Preferences::number(const QString& key, double fallback) const
{
    bool isNumber = false;
    const double stored = m_settings.value(key).toDouble(&isNumber);
    return isNumber && std::isfinite(stored) ? stored : fallback;
}

bool Preferences::flag(const QString& key, bool fallback) const
{
    // QVariant takes any text for true.
    const QString stored = m_settings.value(key).toString().toLower();
    if (stored == u"true" || stored == u"1")
        return true;
    if (stored == u"false" || stored == u"0")
        return false;
    return fallback;
}

} // namespace mossbank
