// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Support/Calendar.h"

#include <QHash>

#include <unicode/dtptngen.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

constexpr qint64 kSecondsAnHour = 3600;
constexpr qint64 kSecondsADay = 86'400;
/// Beyond this the milliseconds and years of Qt's calendar come near their limits.
constexpr double kReach = 1e13;

/// Rounded down, so that a moment just before midnight stays before it. Clocks change at whole
/// seconds, so everything about a moment but the moment itself can be reckoned in these.
qint64 wholeSeconds(Date date)
{
    return static_cast<qint64>(std::floor(date.secondsSince1970));
}

Date fromWholeSeconds(qint64 seconds)
{
    return {static_cast<double>(seconds)};
}

QDateTime utc(qint64 seconds)
{
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
}

/// Which `unit` of seconds since 1970 `seconds` is in, also before then.
qint64 unitsBelow(qint64 seconds, qint64 unit)
{
    return seconds / unit - (seconds % unit < 0 ? 1 : 0);
}

/// How a locale writes these fields. Empty where that cannot be known.
icu::UnicodeString patternOf(const icu::Locale& locale, const char16_t* fields)
{
    // Finding it takes longer than all the rest, and a list asks for the same again and again.
    thread_local QHash<QByteArray, icu::UnicodeString> patterns;
    const QByteArray key = QByteArray(locale.getName()) + ' ' + QStringView(fields).toLatin1();
    if (const auto known = patterns.constFind(key); known != patterns.cend())
        return *known;
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<icu::DateTimePatternGenerator> generator(
        icu::DateTimePatternGenerator::createInstance(locale, error));
    const icu::UnicodeString pattern =
        U_FAILURE(error) ? icu::UnicodeString() : generator->getBestPattern(fields, error);
    return *patterns.insert(key, U_FAILURE(error) ? icu::UnicodeString() : pattern);
}

bool isWithinReach(Date date)
{
    return std::isfinite(date.secondsSince1970) && std::abs(date.secondsSince1970) <= kReach;
}

} // namespace

Calendar::Calendar(const QTimeZone& zone, const QLocale& locale)
    : m_zone(zone.isValid() ? zone : QTimeZone::utc())
    , m_locale(locale)
{
}

Calendar Calendar::current()
{
    return {QTimeZone::systemTimeZone(), QLocale()};
}

std::optional<DateInterval> Calendar::dateInterval(Component component, Date date) const
{
    if (!isWithinReach(date))
        return std::nullopt;
    return component == Component::Day ? day(date) : hour(date);
}

std::optional<Date> Calendar::startOfDay(int year, int month, int day) const
{
    const QDate name(year, month, day);
    if (!name.isValid())
        return std::nullopt;
    const qint64 number = QDate(1970, 1, 1).daysTo(name);
    if (!isWithinReach(fromWholeSeconds(number * kSecondsADay)))
        return std::nullopt;
    const qint64 start = beginningOfDay(number);
    // A zone that crosses the date line leaves out a whole day; what begins there is another.
    if (shownDay(start) != number)
        return std::nullopt;
    return fromWholeSeconds(start);
}

std::optional<Date> Calendar::next(int hour, int minute, Date date) const
{
    if (!isWithinReach(date))
        return std::nullopt;
    constexpr qint64 kSecondsAMinute = 60;
    const qint64 timeOfDay = hour * kSecondsAnHour + minute * kSecondsAMinute;
    for (qint64 number = shownDay(wholeSeconds(date));; ++number) {
        const qint64 second = firstShowing(number * kSecondsADay + timeOfDay);
        // The day may be missing from the year.
        if (shownDay(second) == number && date < fromWholeSeconds(second))
            return fromWholeSeconds(second);
    }
}

std::optional<Date> Calendar::daysBefore(int days, Date date) const
{
    const Date about = date - static_cast<double>(days) * static_cast<double>(kSecondsADay);
    if (!isWithinReach(date) || !isWithinReach(about))
        return std::nullopt;
    const qint64 second = wholeSeconds(date);
    const qint64 shown = second + offsetAt(second) - days * kSecondsADay;
    return fromWholeSeconds(firstShowing(shown)) + (date - fromWholeSeconds(second));
}

QString Calendar::shortTime(Date date) const
{
    return m_locale.toString(local(date).time(), QLocale::ShortFormat);
}

QString Calendar::timeWithSeconds(Date date) const
{
    QString format = m_locale.timeFormat(QLocale::ShortFormat);
    if (!format.contains(u's'))
        format.replace(u"mm"_s, u"mm:ss"_s);
    return m_locale.toString(local(date).time(), format);
}

QString Calendar::monthAndDay(Date date) const
{
    return worded(date, u"MMMMd");
}

QString Calendar::shortMonthAndDay(Date date) const
{
    return worded(date, u"MMMd");
}

QString Calendar::weekdayAndDay(Date date) const
{
    return worded(date, u"EEEMMMd");
}

QString Calendar::fullDate(Date date) const
{
    return worded(date, u"EEEEyMMMMd");
}

QString Calendar::monthAndYear(Date date) const
{
    return worded(date, u"yMMMM");
}

QString Calendar::worded(Date date, const char16_t* fields) const
{
    if (!isWithinReach(date))
        return {};
    const QByteArray name = m_locale.name().toLatin1();
    const icu::Locale locale(name.constData());
    const icu::UnicodeString pattern = patternOf(locale, fields);
    UErrorCode error = U_ZERO_ERROR;
    icu::SimpleDateFormat format(pattern, locale, error);
    if (pattern.isEmpty() || U_FAILURE(error))
        return {};
    // The clocks are this calendar's own already.
    format.adoptTimeZone(icu::TimeZone::getGMT()->clone());
    QDateTime shown = local(date);
    shown.setTimeSpec(Qt::UTC);
    icu::UnicodeString text;
    format.format(static_cast<UDate>(shown.toMSecsSinceEpoch()), text);
    return QStringView(text.getBuffer(), text.length()).toString();
}

QDateTime Calendar::local(Date date) const
{
    if (!isWithinReach(date))
        return {};
    const double milliseconds = std::floor(date.secondsSince1970 * 1000);
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(milliseconds), m_zone);
}

DateInterval Calendar::day(Date date) const
{
    const qint64 number = shownDay(wholeSeconds(date));
    const Date start = fromWholeSeconds(beginningOfDay(number));
    const Date end = fromWholeSeconds(beginningOfDay(number + 1));
    if (date < end)
        return {start, end};
    // Where clocks go back over midnight, part of the evening is told again after the first
    // midnight. The clocks show the old day there, and it lies in the new one.
    return {end, fromWholeSeconds(beginningOfDay(number + 2))};
}

DateInterval Calendar::hour(Date date) const
{
    const qint64 second = wholeSeconds(date);
    const qint64 shown = second + offsetAt(second);
    qint64 start = second - (shown - unitsBelow(shown, kSecondsAnHour) * kSecondsAnHour);
    const qint64 end = start + kSecondsAnHour;
    const auto changeAhead = nextChange(second, end);
    while (const auto change = nextChange(start, second + 1))
        start = *change;
    return {fromWholeSeconds(start), fromWholeSeconds(changeAhead.value_or(end))};
}

qint64 Calendar::beginningOfDay(qint64 number) const
{
    return firstShowing(number * kSecondsADay);
}

qint64 Calendar::firstShowing(qint64 shown) const
{
    // No zone is a whole day away from UTC, so here the clocks show an earlier time. From change
    // to change onward, the first stretch whose clocks come to show that time or later has it.
    qint64 from = shown - kSecondsADay;
    while (true) {
        const qint64 found = std::max(from, shown - offsetAt(from));
        const auto change = nextChange(from, found + 1);
        if (!change)
            return found;
        from = *change;
    }
}

qint64 Calendar::shownDay(qint64 second) const
{
    return unitsBelow(second + offsetAt(second), kSecondsADay);
}

qint64 Calendar::offsetAt(qint64 second) const
{
    return m_zone.offsetFromUtc(utc(second));
}

std::optional<qint64> Calendar::nextChange(qint64 second, qint64 before) const
{
    qint64 from = second;
    while (true) {
        const auto transition = m_zone.nextTransition(utc(from));
        if (!transition.atUtc.isValid())
            return std::nullopt;
        from = transition.atUtc.toSecsSinceEpoch();
        if (from >= before)
            return std::nullopt;
        // Some transitions change a zone's name alone.
        if (transition.offsetFromUtc != offsetAt(second))
            return from;
    }
}

} // namespace mossbank
