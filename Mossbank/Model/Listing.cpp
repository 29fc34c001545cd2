// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/Listing.h"

#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Model/Recorder.h"
#include "Mossbank/Model/Texts.h"
#include "MossbankCore/Browsing/SelectionCursor.h"
#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Ports/Clock.h"
#include "MossbankCore/Support/Awaited.h"

#include <QPointer>

#include <algorithm>
#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

const QString kTimeline = u"timeline"_s;
const QString kAsk = u"ask"_s;
const QString kMoments = u"moments"_s;

} // namespace

Listing::Listing(Surroundings surroundings, Recorder& recorder, HistoryStore* store,
                 QObject* parent)
    : QObject(parent)
    , m_around(std::move(surroundings))
    , m_recorder(recorder)
    , m_store(store)
    , m_day(startOfDay(m_around.clock.now()))
{
    const Preferences& preferences = m_around.preferences;
    connect(&preferences, &Preferences::lensChanged, this, &Listing::lensChanged);
    connect(&preferences, &Preferences::hasSeenSearchHintChanged, this,
            &Listing::showsSearchHintChanged);
}

Listing::~Listing()
{
    raiseGeneration();
}

std::optional<qsizetype> Listing::position(const QString& id) const
{
    const auto found = m_positions.constFind(id);
    return found == m_positions.constEnd() ? std::nullopt : std::optional(*found);
}

std::optional<Date> Listing::startOfDay(Date date) const
{
    const auto day = m_around.calendar().dateInterval(Calendar::Component::Day, date);
    return day ? std::optional(day->start) : std::nullopt;
}

// Filters

void Listing::setQuery(const QString& query)
{
    if (query == m_query)
        return;
    m_query = query;
    scheduleRefresh();
    Q_EMIT queryChanged();
    // Whoever types has found what the hint tells of.
    if (!query.isEmpty())
        dismissSearchHint();
}

void Listing::setDay(std::optional<Date> day)
{
    day = day ? startOfDay(*day) : std::nullopt;
    m_isToday = day && day == startOfDay(m_around.clock.now());
    if (day == m_day)
        return;
    m_day = day;
    scheduleRefresh();
    Q_EMIT dayChanged();
}

void Listing::setAppFilter(const std::optional<QString>& app)
{
    if (app == m_appFilter)
        return;
    m_appFilter = app;
    scheduleRefresh();
    Q_EMIT appFilterChanged();
}

void Listing::shiftDay(int days)
{
    // Beyond these no calendar has a day.
    constexpr int kFar = 10'000'000;
    days = std::clamp(days, -kFar, kFar);
    const auto from = startOfDay(m_day.value_or(m_around.clock.now()));
    const auto today = startOfDay(m_around.clock.now());
    if (!from || !today)
        return;
    std::optional<Date> to;
    int back = -days;
    do {
        to = m_around.calendar().daysBefore(back++, *from);
        to = to ? startOfDay(*to) : std::nullopt;
        // A day that a zone has left out of its year is the one after it.
    } while (days < 0 && to == from);
    if (to)
        setDay(std::min(*to, *today));
}

std::optional<Date> Listing::latestDayWithHistory() const
{
    // Its first moment is another one where the zone has changed since it was chosen.
    const auto chosen = m_day ? startOfDay(*m_day) : std::nullopt;
    for (auto day = m_stats.days.cend(); day != m_stats.days.cbegin();) {
        --day;
        if (*day > 0 && day.key() != chosen)
            return day.key();
    }
    return std::nullopt;
}

ListingWords Listing::words(bool meaningIsReady) const
{
    return {{.query = m_query,
             .day = m_day,
             .appFilter = m_appFilter,
             .count = m_memories.size(),
             .extent = m_extent,
             .canShowEarlier = canShowEarlier(),
             .isListedByMeaning = m_isListedByMeaning,
             .dayMatches = m_dayMatches,
             .isRecording = m_recorder.isRecording(),
             .meaningIsReady = meaningIsReady},
            m_around.calendar(),
            m_around.clock.now()};
}

Listing::Lens Listing::lens() const
{
    const QString stored = m_around.preferences.lens();
    return stored == kTimeline ? Lens::Timeline : stored == kAsk ? Lens::Ask : Lens::Moments;
}

QString Listing::help(Lens lens)
{
    switch (lens) {
    case Lens::Moments:
        return localized("One screenshot at a time");
    case Lens::Timeline:
        return localized("The day grouped into stretches of work");
    case Lens::Ask:
        break;
    }
    return localized("Ask a question and get the moments that answer it");
}

void Listing::setLens(Lens lens)
{
    if (lens == this->lens())
        return;
    m_around.preferences.setLens(lens == Lens::Timeline ? kTimeline
                                 : lens == Lens::Ask    ? kAsk
                                                        : kMoments);
}

// Selection

void Listing::setSelectedID(const std::optional<QString>& id)
{
    if (id == m_selectedID)
        return;
    m_selectedID = id;
    Q_EMIT selectedIDChanged();
}

const Memory* Listing::selected() const
{
    const auto place = m_selectedID ? position(*m_selectedID) : std::nullopt;
    return place ? &m_memories.at(*place) : nullptr;
}

std::optional<QUrl> Listing::imageURL() const
{
    const Memory* const memory = selected();
    if (!memory || !m_store)
        return std::nullopt;
    return QUrl::fromLocalFile(m_store->images() + u'/' + memory->filename);
}

void Listing::step(qsizetype delta)
{
    // Further than from one end to the other is no further.
    delta = std::clamp(delta, -m_memories.size(), m_memories.size());
    const auto from = m_selectedID ? position(*m_selectedID) : std::nullopt;
    if (from && *from - delta >= m_memories.size() && canShowEarlier()) {
        showEarlier();
        return;
    }
    // The list runs from the newest, a step towards it is one back.
    if (const auto to = SelectionCursor::move(from, -delta, m_memories.size()))
        setSelectedID(m_memories.at(*to).id);
}

void Listing::setShowsEnlarged(bool shows)
{
    if (std::exchange(m_showsEnlarged, shows) != shows)
        Q_EMIT showsEnlargedChanged();
}

// Windows

void Listing::openWorkspace()
{
    // Whoever has looked at today looks at today, also on the morning after.
    if (m_openWorkspaces == 0 && m_isToday)
        setDay(m_around.clock.now());
    ++m_openWorkspaces;
    refreshSoon();
}

void Listing::closeWorkspace()
{
    if (m_openWorkspaces > 0 && --m_openWorkspaces == 0)
        letGo();
}

/// The texts of thousands of screenshots are for whoever looks at them. What was chosen stays, and
/// the next window begins with it.
void Listing::letGo()
{
    raiseGeneration();
    setListedByMeaning(false);
    m_earlierFrom.reset();
    m_gone.clear();
    m_listedFilters.reset();
    m_extent = Extent::Complete;
    setLoading(false);
    take({});
    Q_EMIT memoriesChanged();
}

bool Listing::showsSearchHint() const
{
    const Preferences& preferences = m_around.preferences;
    return !preferences.isDemo() && !preferences.hasSeenSearchHint() && m_stats.count > 0;
}

void Listing::dismissSearchHint()
{
    if (!m_around.preferences.hasSeenSearchHint())
        m_around.preferences.setHasSeenSearchHint(true);
}

// Deleting

void Listing::deleteSelected()
{
    if (!m_selectedID || !m_store)
        return;
    std::optional<QString> next;
    if (const auto place = position(*m_selectedID)) {
        if (*place + 1 < m_memories.size())
            next = m_memories.at(*place + 1).id;
        else if (*place > 0)
            next = m_memories.at(*place - 1).id;
    }
    Job::detach(afterDeletion(m_store->deleteMemory(*m_selectedID), *m_selectedID, next));
}

QCoro::Task<> Listing::afterDeletion(QFuture<void> deletion, QString id,
                                     std::optional<QString> next)
{
    const QPointer<Listing> self(this);
    const quint64 number = ++m_deletions;
    std::optional<QString> problem;
    try {
        co_await awaited(deletion);
    } catch (const Failure& failure) {
        problem = failure.message();
    }
    if (!self)
        co_return;
    if (problem)
        m_recorder.setErrorMessage(localized("Could not delete the screenshot: %1").arg(*problem));
    const bool isThere = problem && co_await isInLibrary(id);
    if (!self)
        co_return;
    if (!isThere)
        m_gone.insert(id);
    // Whoever has deleted another one since is past it.
    const bool isLast = number == m_deletions;
    if (isLast && next)
        setSelectedID(next);
    if (isLast)
        co_await refresh();
}

/// A removal may fail when the row has gone, and its words in the log have not.
QCoro::Task<bool> Listing::isInLibrary(QString id)
{
    const QFuture<QList<Memory>> asked = m_store->memories({id});
    try {
        const QList<Memory> found = co_await awaited(asked);
        co_return !found.isEmpty();
    } catch (const Failure&) {
        co_return true;
    }
}

void Listing::dropGone()
{
    const auto isGone = [this](const Memory& memory) {
        return m_gone.contains(memory.id);
    };
    const bool isAny = std::ranges::any_of(std::as_const(m_memories), isGone);
    QList<Memory> left = isAny ? m_memories : QList<Memory>();
    left.removeIf(isGone);
    m_gone.clear();
    if (isAny)
        show(std::move(left), std::nullopt);
}

void Listing::forgetAll()
{
    raiseGeneration();
    setListedByMeaning(false);
    m_earlierFrom.reset();
    m_gone.clear();
    m_listedFilters.reset();
    m_dayMatches.reset();
    m_extent = Extent::Complete;
    show({}, std::nullopt);
    refreshSoon();
}

} // namespace mossbank
