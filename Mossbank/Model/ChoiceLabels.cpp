// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/ChoiceLabels.h"

#include "Mossbank/Model/Texts.h"

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

constexpr qint64 kMinute = 60;
constexpr qint64 kTwoMinutes = 120;

/// Rounded to a whole number. What is stored may be any number.
qint64 whole(double value)
{
    constexpr double kReach = 1e15;
    return static_cast<qint64>(std::round(std::clamp(value, -kReach, kReach)));
}

} // namespace

QString ChoiceLabels::intervalLabel(double seconds)
{
    const qint64 count = whole(seconds);
    if (count == 1)
        return localized("1 second");
    if (count < kMinute)
        return localized("%1 seconds").arg(count);
    if (count < kTwoMinutes)
        return localized("1 minute");
    return localized("%1 minutes").arg(count / kMinute);
}

QString ChoiceLabels::everyIntervalLabel(double seconds)
{
    const qint64 count = whole(seconds);
    if (count == 1)
        return localized("every second");
    if (count < kMinute)
        return localized("every %1 seconds").arg(count);
    if (count < kTwoMinutes)
        return localized("every minute");
    return localized("every %1 minutes").arg(count / kMinute);
}

QString ChoiceLabels::refreshLabel(double minutes)
{
    constexpr qint64 kHour = 60;
    const qint64 count = whole(minutes);
    return count == kHour ? localized("1 hour") : localized("%1 minutes").arg(count);
}

QString ChoiceLabels::retentionLabel(int days)
{
    if (days < 1)
        return localized("Forever");
    return days == 1 ? localized("1 day") : localized("%1 days").arg(days);
}

QString ChoiceLabels::changeLabel(const QString& mode)
{
    if (mode == u"flicker")
        return localized("Ignore what moves on its own");
    if (mode == u"obvious")
        return localized("Only obvious changes");
    return localized("Any change");
}

QString ChoiceLabels::appearanceLabel(const QString& mode)
{
    if (mode == u"light")
        return localized("Light");
    if (mode == u"dark")
        return localized("Dark");
    return localized("Match System");
}

} // namespace mossbank
