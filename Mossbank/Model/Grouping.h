// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Browsing/DaySessions.h"
#include "MossbankCore/Support/Job.h"

#include <QCoroTask>
#include <QObject>
#include <QString>

#include <optional>

namespace mossbank {

class Listing;

/// Groups the list on show into stretches of work, while that is what the user looks at. The
/// grouping before stays until the next is there.
///
/// Threading: the main thread; the work is done in the background.
class Grouping : public QObject {
    Q_OBJECT

public:
    /// Seconds: who saw nothing new for so long was away.
    static constexpr double kGap = 600;
    /// Seconds: more than this is not one thing.
    static constexpr double kLongest = 3600;
    /// How many words and titles a stretch is named by at most.
    static constexpr qsizetype kKeywords = 4;

    /// The listing outlives it.
    explicit Grouping(const Listing& listing, QObject* parent = nullptr);

    /// Oldest first. Empty while another lens is chosen.
    const QList<Session>& sessions() const { return m_sessions; }
    bool isGrouping() const { return m_isGrouping; }

Q_SIGNALS:
    void sessionsChanged();
    void isGroupingChanged();

private:
    void regroup();
    QCoro::Task<> group(QList<Memory> memories, Cancellation cancellation);
    void setSessions(QList<Session> sessions);
    void setGrouping(bool isGrouping);

    const Listing& m_listing;
    QList<Session> m_sessions;
    bool m_isGrouping = false;
    /// Stands for the list that the last grouping was made of, and is cheaper to compare.
    std::optional<QString> m_groupedFrom;
    /// Last: cancelled before anything above goes.
    Job m_work;
};

} // namespace mossbank
