// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/ListingWords.h"

#include "Mossbank/Model/Texts.h"

#include <numeric>
#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

} // namespace

ListingWords::ListingWords(About about, const Calendar& calendar, Date now)
    : m_about(std::move(about))
    , m_calendar(calendar)
    , m_chosenDay(chosenDay(now))
{
}

ListingWords::ChosenDay ListingWords::chosenDay(Date now) const
{
    constexpr auto kDay = Calendar::Component::Day;
    if (!m_about.day)
        return ChosenDay::AllHistory;
    const auto today = m_calendar.dateInterval(kDay, now);
    if (today && today->contains(*m_about.day))
        return ChosenDay::Today;
    // Days lie end to end.
    const auto yesterday =
        today ? m_calendar.dateInterval(kDay, today->start - 1) : std::optional<DateInterval>();
    return yesterday && yesterday->contains(*m_about.day) ? ChosenDay::Yesterday
                                                          : ChosenDay::Another;
}

QString ListingWords::date() const
{
    return m_about.day ? m_calendar.monthAndDay(*m_about.day) : QString();
}

QString ListingWords::dateTitle() const
{
    switch (m_chosenDay) {
    case ChosenDay::AllHistory:
        return localized("All history");
    case ChosenDay::Today:
        return localized("Today");
    case ChosenDay::Yesterday:
    case ChosenDay::Another:
        break;
    }
    return date();
}

QString ListingWords::countLabel() const
{
    const bool isAll = m_about.extent == Extent::Complete;
    const auto of = [&](const char* all, const char* newest) {
        return localized(isAll ? all : newest, m_about.count)
            .arg(m_calendar.locale().toString(m_about.count));
    };
    const bool isOne = m_about.count == 1;
    QStringList parts;
    if (m_about.isListedByMeaning)
        parts.append(of("%1 by meaning", "Newest %1 by meaning"));
    else if (!m_about.query.isEmpty())
        parts.append(isOne ? localized(isAll ? "1 match" : "Newest 1 match")
                           : of("%1 matches", "Newest %1 matches"));
    else
        parts.append(isOne ? localized(isAll ? "1 moment" : "Newest 1 moment")
                           : of("%1 moments", "Newest %1 moments"));
    if (m_about.extent == Extent::NewestOfDay)
        parts.append(localized("this day holds more than the list shows"));
    else if (m_about.extent == Extent::NewestAcrossDays && !m_about.canShowEarlier)
        parts.append(localized("choose a day for earlier ones"));
    return parts.join(u" · "_s);
}

QString ListingWords::emptyTitle() const
{
    if (!m_about.query.isEmpty())
        return localized("No moments found");
    if (m_about.appFilter) {
        const QString& app = *m_about.appFilter;
        switch (m_chosenDay) {
        case ChosenDay::AllHistory:
            return localized("Nothing from %1 in your history").arg(app);
        case ChosenDay::Today:
            return localized("Nothing from %1 today").arg(app);
        case ChosenDay::Yesterday:
            return localized("Nothing from %1 yesterday").arg(app);
        case ChosenDay::Another:
            return localized("Nothing from %1 on %2").arg(app, date());
        }
    }
    switch (m_chosenDay) {
    case ChosenDay::AllHistory:
        return localized("Nothing was saved in your history");
    case ChosenDay::Today:
        return localized("Nothing was saved today");
    case ChosenDay::Yesterday:
        return localized("Nothing was saved yesterday");
    case ChosenDay::Another:
        break;
    }
    return localized("Nothing was saved on %1").arg(date());
}

qsizetype ListingWords::matchesElsewhere() const
{
    if (m_about.query.isEmpty() || !m_about.day || !m_about.dayMatches)
        return 0;
    const QMap<Date, qsizetype>& matches = *m_about.dayMatches;
    const auto all = std::accumulate(matches.cbegin(), matches.cend(), qsizetype{0});
    // Its first moment is another one where the zone has changed since it was chosen.
    const auto day = m_calendar.dateInterval(Calendar::Component::Day, *m_about.day);
    return day ? all - matches.value(day->start) : all;
}

QString ListingWords::elsewhereDetail(qsizetype count) const
{
    const bool isOne = count == 1;
    const QString number = m_calendar.locale().toString(count);
    if (m_chosenDay == ChosenDay::Today)
        return isOne ? localized("Nothing today, but 1 screenshot matches on other days.")
                     : localized("Nothing today, but %1 screenshots match on other days.", count)
                           .arg(number);
    if (m_chosenDay == ChosenDay::Yesterday)
        return isOne
                   ? localized("Nothing yesterday, but 1 screenshot matches on other days.")
                   : localized("Nothing yesterday, but %1 screenshots match on other days.", count)
                         .arg(number);
    return isOne ? localized("Nothing on %1, but 1 screenshot matches on other days.").arg(date())
                 : localized("Nothing on %1, but %2 screenshots match on other days.", count)
                       .arg(date(), number);
}

QString ListingWords::appDetail() const
{
    const QString& app = *m_about.appFilter;
    switch (m_chosenDay) {
    case ChosenDay::AllHistory:
        return localized("No %1 screenshots in your history.").arg(app);
    case ChosenDay::Today:
        return localized("No %1 screenshots today.").arg(app);
    case ChosenDay::Yesterday:
        return localized("No %1 screenshots yesterday.").arg(app);
    case ChosenDay::Another:
        break;
    }
    return localized("No %1 screenshots on %2.").arg(app, date());
}

QString ListingWords::emptyDetail() const
{
    if (const qsizetype count = matchesElsewhere(); count > 0)
        return elsewhereDetail(count);
    if (!m_about.query.isEmpty()) {
        if (m_about.isListedByMeaning)
            return localized("Nothing close enough in meaning either. Try another phrase, date, or "
                             "application.");
        if (m_about.meaningIsReady)
            return localized("No screenshot has those words on it. Mossbank can look for the ones "
                             "that were about this instead.");
        return localized("Try another phrase, date, or application.");
    }
    if (m_about.appFilter)
        return appDetail();
    return m_about.isRecording ? localized("Pick another day, or jump to the newest screenshots.")
                               : localized("Recording is off, so nothing new is being saved.");
}

} // namespace mossbank
