// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/Grouping.h"

#include "Mossbank/Model/Listing.h"
#include "MossbankCore/Support/Awaited.h"
#include "MossbankCore/Support/Background.h"

#include <QPointer>

#include <algorithm>
#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

QList<Session> sessionsOf(QList<Memory> newestFirst)
{
    std::ranges::reverse(newestFirst);
    return DaySessions::sessions(newestFirst, Grouping::kGap, Grouping::kLongest,
                                 Grouping::kKeywords);
}

} // namespace

Grouping::Grouping(const Listing& listing, QObject* parent)
    : QObject(parent)
    , m_listing(listing)
{
    connect(&listing, &Listing::memoriesChanged, this, &Grouping::regroup);
    connect(&listing, &Listing::lensChanged, this, &Grouping::regroup);
}

void Grouping::regroup()
{
    const QList<Memory>& memories = m_listing.memories();
    if (m_listing.lens() != Listing::Lens::Timeline || memories.isEmpty()) {
        m_work = {};
        m_groupedFrom.reset();
        setSessions({});
        setGrouping(false);
        return;
    }
    const QString key = u"%1/%2/%3"_s.arg(QString::number(memories.size()), memories.first().id,
                                          memories.last().id);
    if (key == m_groupedFrom)
        return;
    m_groupedFrom = key;
    setGrouping(true);
    m_work = Job::start(&Grouping::group, this, memories);
}

QCoro::Task<> Grouping::group(QList<Memory> memories, Cancellation cancellation)
{
    const QPointer<Grouping> self(this);
    const auto work = [memories] {
        return sessionsOf(memories);
    };
    QList<Session> sessions = co_await awaited(atOnce(work));
    if (!self || cancellation.isRequested())
        co_return;
    setSessions(std::move(sessions));
    setGrouping(false);
}

void Grouping::setSessions(QList<Session> sessions)
{
    if (sessions.isEmpty() && m_sessions.isEmpty())
        return;
    m_sessions = std::move(sessions);
    Q_EMIT sessionsChanged();
}

void Grouping::setGrouping(bool isGrouping)
{
    if (std::exchange(m_isGrouping, isGrouping) != isGrouping)
        Q_EMIT isGroupingChanged();
}

} // namespace mossbank
