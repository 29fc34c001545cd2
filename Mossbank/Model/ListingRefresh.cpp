// SPDX-License-Identifier: Apache-2.0
//
// How the list is made anew, and made longer.
#include "Mossbank/Model/Listing.h"
#include "Mossbank/Model/Recorder.h"
#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Ports/Clock.h"
#include "MossbankCore/Support/Awaited.h"
#include "MossbankCore/Support/Background.h"

#include <QPointer>

#include <algorithm>
#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// How many rows a list has at first, of all history and of one day.
constexpr qsizetype kPageAcrossDays = 1500;
constexpr qsizetype kPageOfDay = 20'000;
/// More than a list ever has cannot be looked through.
constexpr qsizetype kMostRows = 20'000;
/// What may have been recorded since the list was made.
constexpr qsizetype kSlack = 100;
constexpr qsizetype kEarlierStep = 1500;
/// Seconds after a key, so that not each of them has the library searched.
constexpr double kUntilTyped = 0.18;
/// Below so many seconds between neighbours, their minutes alone would not tell them apart.
constexpr double kMinute = 60;

} // namespace

void Listing::raiseGeneration()
{
    ++m_generation;
    // What it would bring is wanted no more, and what is wanted waits behind it.
    m_fetching.cancel();
    m_counting.cancel();
    m_fetching = {};
    m_counting = {};
}

void Listing::scheduleRefresh()
{
    setListedByMeaning(false);
    m_earlierFrom.reset();
    raiseGeneration();
    m_refreshing = Job::start(&Listing::refreshLater, this);
}

QCoro::Task<> Listing::refreshLater(Cancellation cancellation)
{
    const bool isAwaited = co_await m_around.clock.sleep(kUntilTyped, cancellation);
    if (!isAwaited)
        co_return;
    co_await refresh();
}

QCoro::Task<> Listing::refresh()
{
    if (!m_store)
        co_return;
    if (!isMadeAnew()) {
        co_await refreshStats();
        co_return;
    }
    co_await refreshList();
}

QCoro::Task<> Listing::refreshStats()
{
    m_earlierFrom.reset();
    if (!m_gone.isEmpty()) {
        // What a list that is on its way holds may be gone as well.
        raiseGeneration();
        dropGone();
    }
    // A list that was being made when the last window closed has nobody left who would say so.
    if (m_loadingGeneration != m_generation)
        setLoading(false);
    const QPointer<Listing> self(this);
    try {
        const LibraryStats stats = co_await awaited(m_store->stats());
        if (self)
            setStats(stats);
    } catch (const Failure&) {
        // The counts stay as they are; whatever is wrong shows where it matters.
    }
}

Listing::Request Listing::makeRequest()
{
    raiseGeneration();
    Request request = {.generation = m_generation,
                       .filters = {.query = m_query, .day = m_day, .app = m_appFilter},
                       .base = m_day ? kPageOfDay : kPageAcrossDays};
    request.isSameList = request.filters == m_listedFilters;
    request.wanted = request.base;
    if (request.isSameList) {
        if (!m_memories.isEmpty())
            request.anchor = m_memories.constLast().id;
        request.extra = m_earlierFrom ? kEarlierStep : 0;
        request.wanted = std::max(m_memories.size(), request.base) + kSlack + request.extra;
    }
    return request;
}

QCoro::Task<Listing::Answer> Listing::ask(Request request)
{
    const QPointer<Listing> self(this);
    // The library is not to be asked for what nobody waits for any more.
    const auto requireNewest = [&] {
        if (!self || request.generation != m_generation)
            throw Failure(u"Something newer was asked for."_s);
    };
    requireNewest();
    // One more tells whether there are more.
    const qsizetype limit = std::min(request.wanted, kMostRows + kSlack) + 1;
    Answer answer;
    m_fetching = m_store->fetch({.query = request.filters.query,
                                 .day = request.filters.day,
                                 .app = request.filters.app,
                                 .limit = static_cast<int>(limit),
                                 .withText = true,
                                 .held = m_memories});
    answer.rows = co_await awaited(m_fetching);
    requireNewest();
    // The list is held once, and not by its future as well.
    m_fetching = {};
    answer.stats = co_await awaited(m_store->stats());
    requireNewest();
    if (!request.filters.query.isEmpty() || request.filters.app) {
        m_counting =
            m_store->dayCounts({.query = request.filters.query, .app = request.filters.app});
        answer.dayMatches = co_await awaited(m_counting);
    }
    co_return answer;
}

QCoro::Task<> Listing::refreshList()
{
    const QPointer<Listing> self(this);
    const Request request = makeRequest();
    m_loadingGeneration = request.generation;
    setLoading(true);
    Answer answer;
    std::optional<QString> problem;
    try {
        answer = co_await ask(request);
    } catch (const Failure& failure) {
        problem = failure.message();
    }
    // Whoever asked for something newer since owns the list.
    if (!self || request.generation != m_generation)
        co_return;
    m_earlierFrom = problem ? std::nullopt : m_earlierFrom;
    if (problem) {
        m_recorder.setErrorMessage(problem);
        dropGone();
    } else {
        publish(request, std::move(answer));
    }
    // The two above tell others, who may ask for the next.
    if (self && request.generation == m_generation)
        setLoading(false);
}

void Listing::publish(const Request& request, Answer answer)
{
    QList<Memory>& rows = answer.rows;
    std::optional<qsizetype> anchor;
    // One row more than wanted tells that there are more, and is not one of the list.
    const qsizetype wanted = std::min(rows.size(), request.wanted);
    if (request.anchor) {
        const auto end = rows.cbegin() + wanted;
        const auto found = std::ranges::find(rows.cbegin(), end, *request.anchor, &Memory::id);
        if (found != end)
            anchor = found - rows.cbegin();
    }
    qsizetype keep = request.isSameList ? std::max(request.base, m_memories.size()) : request.base;
    if (anchor)
        keep = std::max(request.base, request.extra + *anchor + 1);
    const qsizetype shown = std::min({wanted, keep, kMostRows});
    const Extent extent = shown == rows.size()  ? Extent::Complete
                          : request.filters.day ? Extent::NewestOfDay
                                                : Extent::NewestAcrossDays;
    rows.resize(shown);
    const bool isEarlierAdded = m_earlierFrom && anchor && *anchor + 1 < shown;
    m_earlierFrom.reset();
    m_listedFilters = request.filters;
    m_extent = extent;
    m_dayMatches = std::move(answer.dayMatches);
    const auto added = isEarlierAdded ? std::optional(rows.at(*anchor + 1).id) : std::nullopt;
    show(std::move(rows), added);
    m_gone.removeIf([this](const QString& id) { return !position(id); });
    setStats(answer.stats);
}

void Listing::show(QList<Memory> memories, const std::optional<QString>& selected)
{
    take(std::move(memories));
    const bool isSelectionNew = select(selected);
    // What is selected stands on a list that its viewers have heard of.
    Q_EMIT memoriesChanged();
    if (isSelectionNew)
        Q_EMIT selectedIDChanged();
}

void Listing::take(QList<Memory> memories)
{
    // Letting go of thousands of texts takes longer than a picture on the screen lasts.
    (void)atOnce([before = std::exchange(m_memories, std::move(memories))] {});
    m_positions.clear();
    m_positions.reserve(m_memories.size());
    for (qsizetype place = 0; place < m_memories.size(); ++place)
        m_positions.insert(m_memories.at(place).id, place);
    const auto areNear = [](const Memory& later, const Memory& earlier) {
        return later.timestamp - earlier.timestamp < kMinute;
    };
    m_showsSecondsInStrip = std::ranges::adjacent_find(std::as_const(m_memories), areNear) !=
                            std::as_const(m_memories).end();
}

bool Listing::select(const std::optional<QString>& id)
{
    const std::optional<QString> before = m_selectedID;
    if (id)
        m_selectedID = id;
    else if (m_memories.isEmpty())
        m_selectedID.reset();
    else if (!selected())
        m_selectedID = m_memories.constFirst().id;
    return m_selectedID != before;
}

void Listing::setListedByMeaning(bool isListedByMeaning)
{
    if (std::exchange(m_isListedByMeaning, isListedByMeaning) != isListedByMeaning)
        Q_EMIT isListedByMeaningChanged();
}

void Listing::setLoading(bool isLoading)
{
    if (std::exchange(m_isLoading, isLoading) != isLoading)
        Q_EMIT isLoadingChanged();
}

void Listing::setStats(const LibraryStats& stats)
{
    if (stats == m_stats)
        return;
    const bool showedHint = showsSearchHint();
    m_stats = stats;
    Q_EMIT statsChanged();
    if (showsSearchHint() != showedHint)
        Q_EMIT showsSearchHintChanged();
}

void Listing::showByMeaning(const QList<Memory>& memories)
{
    raiseGeneration();
    m_earlierFrom.reset();
    m_listedFilters.reset();
    m_extent = Extent::Complete;
    setListedByMeaning(true);
    show(memories, std::nullopt);
    setLoading(false);
}

bool Listing::canShowEarlier() const
{
    return m_extent == Extent::NewestAcrossDays && m_memories.size() < kMostRows;
}

void Listing::showEarlier()
{
    if (!canShowEarlier() || m_earlierFrom || m_memories.isEmpty())
        return;
    m_earlierFrom = m_memories.constLast().id;
    refreshSoon();
}

} // namespace mossbank
