// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Workspace/EmptyState.h"

#include "Mossbank/Model/AppModel.h"
#include "Mossbank/Model/Texts.h"
#include "Mossbank/Views/Workspace/Choice.h"

#include <algorithm>

namespace mossbank {

using namespace Qt::StringLiterals;

EmptyState::EmptyState(const WorkspaceParts& parts, QObject* parent)
    : QObject(parent)
    , m_parts(parts)
    , m_listing(parts.model.listing())
{
    for (const auto signal :
         {&Listing::memoriesChanged, &Listing::statsChanged, &Listing::queryChanged,
          &Listing::dayChanged, &Listing::appFilterChanged, &Listing::isListedByMeaningChanged})
        connect(&m_listing, signal, this, &EmptyState::update);
    connect(&m_parts.model.recorder(), &Recorder::isRecordingChanged, this, &EmptyState::update);
    update();
}

ListingWords EmptyState::words() const
{
    // Nothing is searched by meaning yet.
    return m_listing.words(false);
}

QString EmptyState::symbol() const
{
    return m_listing.query().isEmpty() ? u"calendar"_s : u"search"_s;
}

QString EmptyState::title() const
{
    return words().emptyTitle();
}

QString EmptyState::detail() const
{
    return words().emptyDetail();
}

std::vector<EmptyState::Action> EmptyState::possible() const
{
    const bool isSearching = !m_listing.query().isEmpty();
    const bool areElsewhere = words().matchesElsewhere() > 0;
    std::vector<Action> actions;
    if (areElsewhere)
        actions.push_back(Action::SearchAllHistory);
    if (!isSearching && !m_listing.appFilter() && m_listing.latestDayWithHistory())
        actions.push_back(Action::GoToLatestDay);
    if (!isSearching && m_listing.appFilter())
        actions.push_back(Action::ClearAppFilter);
    if (isSearching && !areElsewhere)
        actions.push_back(Action::ShowAllHistory);
    return actions;
}

QVariant EmptyState::worded(Action action) const
{
    switch (action) {
    case Action::SearchAllHistory:
        return QVariant::fromValue(Choice{.label = localized("Search all history")});
    case Action::GoToLatestDay: {
        const Date day = m_listing.latestDayWithHistory().value_or(Date());
        return QVariant::fromValue(
            Choice{.label = localized("Go to %1").arg(m_parts.calendar().shortMonthAndDay(day))});
    }
    case Action::ClearAppFilter:
        return QVariant::fromValue(
            Choice{.label = localized("Stop showing only %1").arg(*m_listing.appFilter()),
                   .help = localized("Show all applications")});
    case Action::ShowAllHistory:
        break;
    }
    return QVariant::fromValue(Choice{.label = localized("Show all history")});
}

void EmptyState::update()
{
    QVariantList buttons;
    for (const Action action : possible())
        buttons.append(worded(action));
    const auto areSame = [](const QVariant& one, const QVariant& other) {
        return one.value<Choice>() == other.value<Choice>();
    };
    const bool isAnother = !std::ranges::equal(buttons, m_actions, areSame);
    if (isAnother)
        m_actions = buttons;
    Q_EMIT changed();
    if (isAnother)
        Q_EMIT actionsChanged();
}

void EmptyState::act(int number)
{
    const auto actions = possible();
    if (number < 0 || number >= static_cast<int>(actions.size()))
        return;
    switch (actions.at(static_cast<std::size_t>(number))) {
    case Action::SearchAllHistory:
        m_listing.setDay(std::nullopt);
        break;
    case Action::GoToLatestDay:
        m_listing.setDay(m_listing.latestDayWithHistory());
        break;
    case Action::ClearAppFilter:
        m_listing.setAppFilter(std::nullopt);
        break;
    case Action::ShowAllHistory:
        m_listing.setDay(std::nullopt);
        m_listing.setQuery({});
        m_listing.setAppFilter(std::nullopt);
        break;
    }
}

} // namespace mossbank
