// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/ListingWords.h"
#include "MossbankCore/Support/Date.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <optional>

namespace mossbank {

/// What a library holds, newest first, the later saved first among equal times.
class PlainLibrary {
public:
    struct Row {
        QString id;
        Date at;
        QString app;
        QString text;
    };
    struct Filters {
        QString query = {};
        /// A day of 24 hours, by its first moment.
        std::optional<Date> day = {};
        std::optional<QString> app = {};
        friend bool operator==(const Filters&, const Filters&) = default;
    };

    void add(const Row& row)
    {
        const auto older = std::ranges::find_if(
            std::as_const(m_rows), [&](const Row& other) { return other.at <= row.at; });
        m_rows.insert(older - m_rows.cbegin(), row);
    }
    void remove(const QString& id)
    {
        m_rows.removeIf([&](const Row& row) { return row.id == id; });
    }
    QString oldest() const { return m_rows.isEmpty() ? QString() : m_rows.constLast().id; }
    qsizetype count() const { return m_rows.size(); }

    /// All that matches.
    QStringList matching(const Filters& filters) const
    {
        QStringList ids;
        for (const Row& row : m_rows) {
            if (matches(row, filters) && (!filters.day || dayOf(row) == *filters.day))
                ids.append(row.id);
        }
        return ids;
    }
    /// How many match on each day, whichever is chosen.
    QMap<Date, qsizetype> days(const Filters& filters) const
    {
        QMap<Date, qsizetype> days;
        for (const Row& row : m_rows) {
            if (matches(row, filters))
                ++days[dayOf(row)];
        }
        return days;
    }

private:
    static constexpr double kDay = 86'400;

    static Date dayOf(const Row& row)
    {
        return {std::floor(row.at.secondsSince1970 / kDay) * kDay};
    }
    static bool matches(const Row& row, const Filters& filters)
    {
        if (filters.app && row.app != *filters.app)
            return false;
        return filters.query.isEmpty() || row.text.startsWith(filters.query) ||
               row.text.contains(u' ' + filters.query);
    }

    QList<Row> m_rows;
};

/// What a list is to be after each thing that happens to it, worked out from the whole library.
class PlainListing {
public:
    using Filters = PlainLibrary::Filters;
    using Extent = ListingWords::Extent;

    Filters filters;
    std::optional<QString> selected;

    const QStringList& shown() const { return m_shown; }
    Extent extent() const { return m_extent; }
    /// Those of the list on show. Absent before there is one.
    const std::optional<Filters>& listed() const { return m_listed; }

    void setFilters(const Filters& others)
    {
        if (others != filters)
            m_isLengthened = false;
        filters = others;
    }

    bool canShowEarlier() const
    {
        return m_extent == Extent::NewestAcrossDays && m_shown.size() < kMost;
    }
    void showEarlier()
    {
        if (canShowEarlier())
            m_isLengthened = true;
    }

    void step(qsizetype delta)
    {
        const qsizetype place = selected ? m_shown.indexOf(*selected) : -1;
        if (place >= 0 && place - delta >= m_shown.size() && canShowEarlier())
            showEarlier();
        else if (!m_shown.isEmpty())
            selected =
                m_shown.at(place < 0 ? 0 : std::clamp(place - delta, kNone, m_shown.size() - 1));
    }

    /// Which row whoever deletes the selected one goes on with: the next older, or else the next
    /// newer.
    std::optional<QString> neighbour() const
    {
        const qsizetype place = selected ? m_shown.indexOf(*selected) : -1;
        if (place >= 0 && place + 1 < m_shown.size())
            return m_shown.at(place + 1);
        return place > 0 ? std::optional(m_shown.at(place - 1)) : std::nullopt;
    }

    /// The library answers the newest question.
    void publish(const PlainLibrary& library)
    {
        const bool isSame = m_listed == filters;
        const qsizetype page = filters.day ? kPageOfDay : kPage;
        const qsizetype extra = isSame && m_isLengthened ? kPage : 0;
        const QStringList all = library.matching(filters);
        // No further down than that is looked.
        const qsizetype seen =
            isSame ? std::min(std::max(m_shown.size(), page) + kNew + extra, kMost + kNew) : page;
        const qsizetype end = isSame && !m_shown.isEmpty() ? all.indexOf(m_shown.constLast()) : -1;
        const bool isEndSeen = end >= 0 && end < seen;
        const qsizetype length = isEndSeen ? std::min(std::max(page, end + 1 + extra), seen)
                                 : isSame  ? std::max(page, m_shown.size())
                                           : page;
        m_shown = all.first(std::min({all.size(), length, kMost}));
        m_extent = m_shown.size() == all.size() ? Extent::Complete
                   : filters.day                ? Extent::NewestOfDay
                                                : Extent::NewestAcrossDays;
        m_listed = filters;
        if (m_isLengthened && isEndSeen && end + 1 < m_shown.size())
            selected = m_shown.at(end + 1);
        else if (!selected || !m_shown.contains(*selected))
            selected = m_shown.isEmpty() ? std::nullopt : std::optional(m_shown.constFirst());
        m_isLengthened = false;
    }

    /// What is different on a list on show. Empty for nothing.
    QString difference(const QStringList& ids, Extent called,
                       const std::optional<QString>& chosen) const
    {
        if (ids != m_shown)
            return QStringLiteral("%1 rows where %2 are meant").arg(ids.size()).arg(m_shown.size());
        if (called != m_extent)
            return QStringLiteral("%1 rows are called %2")
                .arg(ids.size())
                .arg(static_cast<int>(called));
        if (chosen != selected)
            return QStringLiteral("%1 is selected in place of %2")
                .arg(chosen.value_or(QString()), selected.value_or(QString()));
        return {};
    }

    /// A row is gone, and no list can be had without it. Whether it was on the list.
    bool drop(const QString& id)
    {
        if (!m_shown.removeOne(id))
            return false;
        if (!selected || !m_shown.contains(*selected))
            selected = m_shown.isEmpty() ? std::nullopt : std::optional(m_shown.constFirst());
        return true;
    }

    /// It does not, and all stays as it is.
    void fail() { m_isLengthened = false; }

private:
    static constexpr qsizetype kNone = 0;
    static constexpr qsizetype kPage = 1500;
    static constexpr qsizetype kPageOfDay = 20'000;
    static constexpr qsizetype kMost = 20'000;
    static constexpr qsizetype kNew = 100;

    QStringList m_shown;
    Extent m_extent = Extent::Complete;
    std::optional<Filters> m_listed;
    /// Earlier rows have been asked for.
    bool m_isLengthened = false;
};

} // namespace mossbank
