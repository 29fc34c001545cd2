// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Workspace/Workspace.h"

#include "Mossbank/Model/AppModel.h"
#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Ports/DesktopSettings.h"
#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Ports/Clock.h"

#include <utility>

namespace mossbank {

Workspace::Workspace(const WorkspaceParts& parts, QObject* parent)
    : QObject(parent)
    , m_parts(parts)
    , m_listing(parts.model.listing())
    , m_dayWatch(parts.clock, parts.calendar)
    , m_recording(parts.model, parts.calendar, parts.preferences.isDemo())
    , m_sidebar(parts)
    , m_calendar(m_listing, parts.clock, parts.calendar)
    , m_applications(m_listing, parts.installedApplications)
    , m_memories(m_listing, parts.clock, parts.calendar)
    , m_viewer(parts)
    , m_emptyState(parts)
    , m_firstRun(parts, parts.preferences.isDemo())
    // Without a library nobody will ever answer.
    , m_hasLooked(!parts.model.store() || m_listing.stats().count > 0)
{
    follow();
    arrange();
}

void Workspace::follow()
{
    for (const auto signal : {&Listing::memoriesChanged, &Listing::dayChanged,
                              &Listing::queryChanged, &Listing::isListedByMeaningChanged})
        connect(&m_listing, signal, this, &Workspace::headingChanged);
    for (const auto signal : {&Listing::memoriesChanged, &Listing::statsChanged,
                              &Listing::queryChanged, &Listing::appFilterChanged})
        connect(&m_listing, signal, this, &Workspace::arrange);
    connect(&m_listing, &Listing::isLoadingChanged, this, [this] {
        m_hasLooked |= !m_listing.isLoading();
        arrange();
    });
    connect(&m_listing, &Listing::queryChanged, this, &Workspace::queryChanged);
    connect(&m_dayWatch, &DayWatch::dayHasChanged, this, &Workspace::passIntoTheNextDay);
    // The question was about another one.
    connect(&m_listing, &Listing::selectedIDChanged, this,
            [this] { setProperty("asksToDelete", false); });
    for (const auto signal : {&Listing::showsSearchHintChanged, &Listing::statsChanged})
        connect(&m_listing, signal, this, &Workspace::showsSearchHintChanged);
    connect(&m_parts.desktop, &DesktopSettings::changed, this, &Workspace::reducesMotionChanged);
    connect(&m_parts.model.recorder(), &Recorder::errorMessageChanged, this,
            &Workspace::errorMessageChanged);
}

/// What is on show is of the same day as before, which has another name now.
void Workspace::passIntoTheNextDay()
{
    Q_EMIT headingChanged();
    Q_EMIT m_sidebar.dayChanged();
    // The counts are of another today, also where nothing was saved.
    Q_EMIT m_sidebar.statsChanged();
    Q_EMIT m_viewer.changed();
    m_calendar.remake();
    m_memories.redate();
    m_listing.refreshSoon();
}

Workspace::Content Workspace::fitting() const
{
    const bool isFiltered = !m_listing.query().isEmpty() || m_listing.appFilter();
    if (m_hasLooked && m_listing.stats().count == 0 && !isFiltered)
        return FirstRun;
    if (m_listing.memories().isEmpty())
        return m_listing.isLoading() || !m_hasLooked ? Loading : Empty;
    return m_listing.query().isEmpty() ? Moments : Results;
}

void Workspace::arrange()
{
    const Content content = fitting();
    m_memories.setOrder(content == Results ? MemoryRows::Order::NewestFirst
                                           : MemoryRows::Order::OldestFirst);
    if (std::exchange(m_content, content) != content)
        Q_EMIT contentChanged();
}

PictureFolder Workspace::pictures() const
{
    HistoryStore* const store = m_parts.model.store();
    return {store ? store->images() : QString(), m_parts.model.vault()};
}

QString Workspace::query() const
{
    return m_listing.query();
}

void Workspace::setQuery(const QString& query)
{
    m_listing.setQuery(query);
}

QString Workspace::heading() const
{
    return m_listing.words(false).dateTitle();
}

QString Workspace::count() const
{
    return m_listing.words(false).countLabel();
}

bool Workspace::isToday() const
{
    return m_sidebar.isToday();
}

bool Workspace::canShowEarlier() const
{
    return m_listing.canShowEarlier();
}

bool Workspace::reducesMotion() const
{
    return m_parts.desktop.reducesMotion();
}

bool Workspace::isDemo() const
{
    return m_parts.preferences.isDemo();
}

bool Workspace::showsSearchHint() const
{
    return m_listing.showsSearchHint();
}

QString Workspace::errorMessage() const
{
    return m_parts.model.recorder().errorMessage().value_or(QString());
}

bool Workspace::isPermissionMissing() const
{
    // In the sample library nothing is ever recorded, and nothing goes wrong for want of that.
    return m_parts.model.recorder().errorMessage() && !isDemo() && !m_parts.model.mayRecordScreen();
}

void Workspace::setShowsText(bool shows)
{
    if (std::exchange(m_showsText, shows) != shows)
        Q_EMIT showsTextChanged();
}

void Workspace::shiftDay(int days)
{
    m_listing.shiftDay(days);
}

void Workspace::showToday()
{
    m_listing.setDay(m_parts.clock.now());
}

void Workspace::showEarlier()
{
    m_listing.showEarlier();
}

void Workspace::dismissSearchHint()
{
    m_listing.dismissSearchHint();
}

void Workspace::dismissError()
{
    m_parts.model.recorder().setErrorMessage(std::nullopt);
}

void Workspace::openPermissions()
{
    m_parts.model.recorder().openPermissions();
}

} // namespace mossbank
