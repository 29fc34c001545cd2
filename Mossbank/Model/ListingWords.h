// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/Calendar.h"

#include <QMap>
#include <QString>

#include <optional>

namespace mossbank {

/// The words for a list of screenshots: its heading, how many it has, and what is said when it has
/// none.
///
/// Threading: the main thread.
class ListingWords {
public:
    /// Whether a list is all that matches.
    enum class Extent {
        Complete,
        /// One day was chosen, and holds more than the list shows.
        NewestOfDay,
        /// No day was chosen, and there are earlier ones.
        NewestAcrossDays,
    };

    /// What is to be told of.
    struct About {
        QString query = {};
        /// The first moment of the chosen day. Absent: all history.
        std::optional<Date> day = {};
        std::optional<QString> appFilter = {};
        qsizetype count = 0;
        Extent extent = Extent::Complete;
        bool canShowEarlier = false;
        bool isListedByMeaning = false;
        /// How many match on each day, by its first moment.
        std::optional<QMap<Date, qsizetype>> dayMatches = {};
        bool isRecording = false;
        /// Whether it could be searched by meaning.
        bool meaningIsReady = false;
    };

    ListingWords(About about, const Calendar& calendar, Date now);

    /// "Today", "May 31".
    QString dateTitle() const;
    /// "Newest 1,500 moments".
    QString countLabel() const;
    /// What is said in place of an empty list, and below it.
    QString emptyTitle() const;
    QString emptyDetail() const;
    /// How many match on other days than the chosen one. 0 where that was not asked for.
    qsizetype matchesElsewhere() const;

private:
    enum class ChosenDay { AllHistory, Today, Yesterday, Another };

    ChosenDay chosenDay(Date now) const;
    QString date() const;
    QString elsewhereDetail(qsizetype count) const;
    QString appDetail() const;

    About m_about;
    Calendar m_calendar;
    ChosenDay m_chosenDay;
};

} // namespace mossbank
