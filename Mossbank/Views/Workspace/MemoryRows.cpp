// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Workspace/MemoryRows.h"

#include "Mossbank/Model/Listing.h"
#include "Mossbank/Model/Texts.h"
#include "Mossbank/Views/Pictures/PictureProvider.h"
#include "MossbankCore/Ports/Clock.h"

#include <algorithm>
#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// More than these, and it is another list.
constexpr int kMostChanges = 16;

} // namespace

/// Rows that come or go together, by where they stand in the list as it is by then.
struct MemoryRows::Change {
    bool isAddition = false;
    qsizetype at = 0;
    qsizetype count = 0;
    /// Of an addition: where they stand in the new list.
    qsizetype from = 0;
};

MemoryRows::MemoryRows(Listing& listing, Clock& clock, CalendarSource calendar, QObject* parent)
    : QAbstractListModel(parent)
    , m_listing(listing)
    , m_clock(clock)
    , m_calendar(std::move(calendar))
    , m_rows(listing.memories())
    , m_showsSeconds(listing.showsSecondsInStrip())
{
    connect(&listing, &Listing::memoriesChanged, this, &MemoryRows::update);
    connect(&listing, &Listing::selectedIDChanged, this, &MemoryRows::selectedRowChanged);
    connect(&listing, &Listing::queryChanged, this, &MemoryRows::queryChanged);
    // Among all days a row tells its day.
    connect(&listing, &Listing::dayChanged, this, &MemoryRows::redate);
    // Whoever shows them begins with the selected one then, also where many rows are the same.
    for (const auto signal : {&Listing::dayChanged, &Listing::appFilterChanged})
        connect(&listing, signal, this, [this] { m_areOfAnother = true; });
}

void MemoryRows::setOrder(Order order)
{
    if (m_order == order)
        return;
    beginResetModel();
    m_order = order;
    endResetModel();
    Q_EMIT selectedRowChanged();
}

int MemoryRows::row(qsizetype place) const
{
    return static_cast<int>(m_order == Order::NewestFirst ? place : m_rows.size() - 1 - place);
}

qsizetype MemoryRows::place(int row) const
{
    return m_order == Order::NewestFirst ? row : m_rows.size() - 1 - row;
}

int MemoryRows::selectedRow() const
{
    const auto& id = m_listing.selectedID();
    const auto at = id ? m_listing.position(*id) : std::nullopt;
    return at && *at < m_rows.size() ? row(*at) : -1;
}

QString MemoryRows::query() const
{
    return m_listing.query();
}

void MemoryRows::choose(int row)
{
    if (row >= 0 && row < m_rows.size())
        m_listing.setSelectedID(m_rows.at(place(row)).id);
}

void MemoryRows::update()
{
    if (std::exchange(m_areOfAnother, false) || !adapt()) {
        beginResetModel();
        m_rows = m_listing.memories();
        endResetModel();
    }
    // The same rows in the listing's own list: they are held once.
    m_rows = m_listing.memories();
    if (std::exchange(m_showsSeconds, m_listing.showsSecondsInStrip()) != m_showsSeconds)
        redate();
    Q_EMIT selectedRowChanged();
}

/// Makes the rows those of the list by few changes. False where there are too many, or the two are
/// not in the same order.
bool MemoryRows::adapt()
{
    const QList<Memory>& wanted = m_listing.memories();
    std::vector<Change> changes;
    const auto change = [&](bool isAddition, qsizetype at, qsizetype count, qsizetype from) {
        Change* const last = changes.empty() ? nullptr : &changes.back();
        if (last && !isAddition && !last->isAddition && last->at == at)
            last->count += count;
        else
            changes.push_back({isAddition, at, count, from});
        return changes.size() <= kMostChanges;
    };
    qsizetype to = 0;
    for (qsizetype from = 0; from < m_rows.size(); ++from) {
        const QString& id = m_rows.at(from).id;
        if (to < wanted.size() && wanted.at(to).id == id) {
            ++to;
            continue;
        }
        const auto now = m_listing.position(id);
        if (!now) {
            if (!change(false, to, 1, 0))
                return false;
        } else if (*now < to || !change(true, to, *now - to, to)) {
            return false;
        } else {
            to = *now + 1;
        }
    }
    if (to < wanted.size() && !change(true, to, wanted.size() - to, to))
        return false;
    for (const Change& one : changes) {
        if (one.isAddition)
            add(one.at, wanted.mid(one.from, one.count));
        else
            take(one.at, one.count);
    }
    return true;
}

void MemoryRows::take(qsizetype from, qsizetype count)
{
    const int one = row(from);
    const int other = row(from + count - 1);
    beginRemoveRows({}, std::min(one, other), std::max(one, other));
    m_rows.remove(from, count);
    endRemoveRows();
}

void MemoryRows::add(qsizetype at, const QList<Memory>& rows)
{
    const int first = static_cast<int>(m_order == Order::NewestFirst ? at : m_rows.size() - at);
    beginInsertRows({}, first, first + static_cast<int>(rows.size()) - 1);
    QList<Memory> all = m_rows.first(at);
    all += rows;
    all += m_rows.sliced(at);
    m_rows = std::move(all);
    endInsertRows();
}

void MemoryRows::redate()
{
    if (!m_rows.isEmpty())
        Q_EMIT dataChanged(index(0), index(rowCount() - 1), {TimeRole, HelpRole});
}

int MemoryRows::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

/// In a strip of one day the time tells them apart; among all days the day does.
QString MemoryRows::time(const Memory& memory) const
{
    const Calendar calendar = m_calendar();
    const QString time = m_showsSeconds && m_order == Order::OldestFirst
                             ? calendar.timeWithSeconds(memory.timestamp)
                             : calendar.shortTime(memory.timestamp);
    const auto today = calendar.dateInterval(Calendar::Component::Day, m_clock.now());
    if (m_listing.day() || (today && today->contains(memory.timestamp)))
        return time;
    return localized("%1, %2").arg(calendar.shortMonthAndDay(memory.timestamp), time);
}

QVariant MemoryRows::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const Memory& memory = m_rows.at(place(index.row()));
    switch (role) {
    case AppRole:
        return memory.appName;
    case TimeRole:
        return time(memory);
    case HelpRole:
        return localized("%1 · %2").arg(memory.appName, time(memory));
    case TextRole:
        return memory.text;
    case PictureRole:
        return PictureProvider::thumbnail(memory.filename);
    default:
        return {};
    }
}

QHash<int, QByteArray> MemoryRows::roleNames() const
{
    return {{AppRole, "app"_qba},
            {TimeRole, "time"_qba},
            {HelpRole, "help"_qba},
            {TextRole, "memoryText"_qba},
            {PictureRole, "picture"_qba}};
}

} // namespace mossbank
