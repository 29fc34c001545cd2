// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Workspace/CalendarMonth.h"

#include "Mossbank/Model/Listing.h"
#include "Mossbank/Model/Texts.h"
#include "MossbankCore/Ports/Clock.h"

#include <algorithm>
#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

constexpr int kDaysAWeek = 7;
/// A month of 31 days that begins at the end of a week is in six of them. There are so many always,
/// or all below would move with the month.
constexpr int kCells = 6 * kDaysAWeek;

/// Empty cells before the first of the month.
int cellsBefore(QDate month, const QLocale& locale)
{
    return (month.dayOfWeek() - locale.firstDayOfWeek() + kDaysAWeek) % kDaysAWeek;
}

} // namespace

CalendarMonth::CalendarMonth(Listing& listing, Clock& clock, CalendarSource calendar,
                             QObject* parent)
    : QAbstractListModel(parent)
    , m_listing(listing)
    , m_clock(clock)
    , m_calendar(std::move(calendar))
{
    connect(&listing, &Listing::dayChanged, this, &CalendarMonth::followDay);
    connect(&listing, &Listing::statsChanged, this, &CalendarMonth::count);
    // With the list comes what was found on which day.
    connect(&listing, &Listing::memoriesChanged, this, &CalendarMonth::count);
    show(today());
    followDay();
}

QDate CalendarMonth::today() const
{
    return m_calendar().local(m_clock.now()).date();
}

void CalendarMonth::followDay()
{
    const auto& day = m_listing.day();
    const QDate date = day ? m_calendar().local(*day).date() : QDate();
    if (date.isValid() && (date.year() != m_month.year() || date.month() != m_month.month()))
        show(date);
    else
        tell();
}

void CalendarMonth::show(QDate month)
{
    m_month = QDate(month.year(), month.month(), 1);
    m_days.clear();
    const Calendar calendar = m_calendar();
    for (QDate date = m_month; date.month() == m_month.month(); date = date.addDays(1))
        m_days.append({date, calendar.startOfDay(date.year(), date.month(), date.day())});
    count();
    Q_EMIT monthChanged();
}

void CalendarMonth::remake()
{
    show(m_month);
}

void CalendarMonth::showPrevious()
{
    show(m_month.addMonths(-1));
}

void CalendarMonth::showNext()
{
    if (hasNext())
        show(m_month.addMonths(1));
}

bool CalendarMonth::hasNext() const
{
    return m_month.addMonths(1) <= today();
}

void CalendarMonth::count()
{
    const auto& matches = m_listing.dayMatches();
    const QMap<Date, qsizetype>& counts = matches ? *matches : m_listing.stats().days;
    m_most = 0;
    for (Day& day : m_days) {
        day.count = day.start ? counts.value(*day.start) : 0;
        m_most = std::max(m_most, day.count);
    }
    tell();
}

void CalendarMonth::tell()
{
    Q_EMIT dataChanged(index(0), index(kCells - 1));
}

QString CalendarMonth::title() const
{
    const auto start = m_calendar().startOfDay(m_month.year(), m_month.month(), 15);
    return start ? m_calendar().monthAndYear(*start) : QString();
}

QStringList CalendarMonth::weekdays() const
{
    const QLocale locale = m_calendar().locale();
    QStringList days;
    for (int day = 0; day < kDaysAWeek; ++day) {
        const int number = (locale.firstDayOfWeek() - 1 + day) % kDaysAWeek + 1;
        days.append(locale.standaloneDayName(number, QLocale::NarrowFormat));
    }
    return days;
}

qsizetype CalendarMonth::cell(int number) const
{
    return number - cellsBefore(m_month, m_calendar().locale());
}

void CalendarMonth::choose(int number)
{
    const qsizetype at = cell(number);
    if (at >= 0 && at < m_days.size() && m_days.at(at).start)
        m_listing.setDay(m_days.at(at).start);
}

QString CalendarMonth::spoken(const Day& day) const
{
    if (!day.start)
        return {};
    const Calendar calendar = m_calendar();
    const QString number = calendar.locale().toString(day.count);
    const bool isOne = day.count == 1;
    const QString count =
        m_listing.dayMatches()
            ? (isOne ? localized("1 match") : localized("%1 matches", day.count).arg(number))
            : (isOne ? localized("1 screenshot")
                     : localized("%1 screenshots", day.count).arg(number));
    return localized("%1, %2").arg(calendar.fullDate(*day.start), count);
}

int CalendarMonth::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : kCells;
}

QVariant CalendarMonth::data(const QModelIndex& index, int role) const
{
    const qsizetype at = cell(index.row());
    const bool isDay = index.isValid() && at >= 0 && at < m_days.size();
    const Day day = isDay ? m_days.at(at) : Day();
    switch (role) {
    case NumberRole:
        return day.start ? day.date.day() : 0;
    case SpokenRole:
        return spoken(day);
    case ShareRole:
        return m_most > 0 ? static_cast<double>(day.count) / static_cast<double>(m_most) : 0.0;
    case IsChosenRole:
        return day.start && m_listing.day() == day.start;
    case IsTodayRole:
        return day.start && day.date == today();
    case IsFutureRole:
        return day.start && day.date > today();
    case IsTabStopRole:
        return isTabStop(day);
    default:
        return {};
    }
}

bool CalendarMonth::isTabStop(const Day& day) const
{
    const auto isChosen = [this](const Day& one) {
        return one.start && m_listing.day() == one.start;
    };
    return isChosen(day) ||
           (day.start && day.date == m_month && std::ranges::none_of(m_days, isChosen));
}

QHash<int, QByteArray> CalendarMonth::roleNames() const
{
    return {{NumberRole, "number"_qba},      {SpokenRole, "spoken"_qba},
            {ShareRole, "share"_qba},        {IsChosenRole, "isChosen"_qba},
            {IsTodayRole, "isToday"_qba},    {IsFutureRole, "isFuture"_qba},
            {IsTabStopRole, "isTabStop"_qba}};
}

} // namespace mossbank
