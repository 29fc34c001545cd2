// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/ListingWords.h"
#include "Mossbank/Model/Surroundings.h"
#include "MossbankCore/Library/LibraryStats.h"
#include "MossbankCore/Library/Memory.h"
#include "MossbankCore/Support/Job.h"

#include <QCoroTask>
#include <QFuture>
#include <QHash>
#include <QList>
#include <QMap>
#include <QObject>
#include <QSet>
#include <QString>
#include <QUrl>

#include <optional>
#include <ranges>

namespace mossbank {

class HistoryStore;
class Recorder;

/// Which screenshots are on show: by the words that were typed, the day, the application. It keeps
/// the list fresh while the recorder adds to the library, and the selection alive meanwhile.
///
/// Threading: the main thread, given up at each wait for the library. What was asked for is shown
/// only if nothing newer was asked for since.
/// Errors: none are thrown. A list that could not be had leaves the one that is there, and says why
/// in the recorder's `errorMessage`.
class Listing : public QObject {
    Q_OBJECT

public:
    using Extent = ListingWords::Extent;

    /// How history is shown.
    enum class Lens { Moments, Timeline, Ask };

    /// The recorder and the store outlive it. Without a store the list stays empty.
    Listing(Surroundings surroundings, Recorder& recorder, HistoryStore* store,
            QObject* parent = nullptr);
    ~Listing() override;

    /// The list on show, newest first, with the text of each.
    const QList<Memory>& memories() const { return m_memories; }
    /// The same, oldest first.
    auto chronological() const { return std::views::reverse(m_memories); }
    /// Where in the list a screenshot stands. Absent when it is not in it.
    std::optional<qsizetype> position(const QString& id) const;
    /// Whether two neighbours on the list lie less than a minute apart.
    bool showsSecondsInStrip() const { return m_showsSecondsInStrip; }
    Extent extent() const { return m_extent; }
    bool isLoading() const { return m_isLoading; }
    const LibraryStats& stats() const { return m_stats; }
    /// How many screenshots match what was typed and the application, by the day's first moment.
    /// Absent where nothing was typed and no application chosen.
    const std::optional<QMap<Date, qsizetype>>& dayMatches() const { return m_dayMatches; }

    const QString& query() const { return m_query; }
    void setQuery(const QString& query);
    /// The first moment of the chosen day. Absent: all history.
    const std::optional<Date>& day() const { return m_day; }
    /// The day that any of its moments is of.
    void setDay(std::optional<Date> day);
    /// The chosen application, by the name that it has in the library.
    const std::optional<QString>& appFilter() const { return m_appFilter; }
    void setAppFilter(const std::optional<QString>& app);
    /// The newest day that has any, other than the chosen one.
    std::optional<Date> latestDayWithHistory() const;
    /// What the list is called now. `meaningIsReady`: it could be searched by meaning.
    ListingWords words(bool meaningIsReady) const;
    /// So many days on, as far as today. All history goes from today.
    void shiftDay(int days);

    Lens lens() const;
    void setLens(Lens lens);
    /// What a lens shows, in a sentence.
    static QString help(Lens lens);

    /// The screenshot in the viewer.
    const std::optional<QString>& selectedID() const { return m_selectedID; }
    void setSelectedID(const std::optional<QString>& id);
    const Memory* selected() const;
    /// Where its picture is. Absent where nothing is selected, or there is no library.
    std::optional<QUrl> imageURL() const;
    /// One row towards the newest for 1, towards the oldest for -1.
    void step(qsizetype delta);

    /// Whether the viewer shows the selected screenshot enlarged.
    bool showsEnlarged() const { return m_showsEnlarged; }
    void setShowsEnlarged(bool shows);

    /// Whether the list was found by meaning. Then what is recorded leaves it as it is.
    bool isListedByMeaning() const { return m_isListedByMeaning; }
    void showByMeaning(const QList<Memory>& memories);

    /// Makes the list anew; without a window on show, the counts alone.
    QCoro::Task<> refresh();
    /// The same, begun at once and not waited for.
    void refreshSoon() { Job::detach(refresh()); }
    bool canShowEarlier() const;
    /// Adds rows at the old end, and selects the first of them.
    void showEarlier();
    /// Removes the selected screenshot, and selects the next older one. It is off the list as well,
    /// also off one that is not made anew.
    void deleteSelected();
    /// Holds none of what was on the list, and makes it anew: everything has been deleted.
    void forgetAll();

    /// A window that shows the list comes, and goes. The first shows today again where that was
    /// what the last one showed; with the last the list is let go.
    void openWorkspace();
    void closeWorkspace();
    bool showsWorkspace() const { return m_openWorkspaces > 0; }

    /// Whether the user is to be told what can be searched for.
    bool showsSearchHint() const;
    void dismissSearchHint();

Q_SIGNALS:
    /// The list, and with it whether it is all, and what was found on which day.
    void memoriesChanged();
    void isListedByMeaningChanged();
    void isLoadingChanged();
    void statsChanged();
    void queryChanged();
    void dayChanged();
    void appFilterChanged();
    void lensChanged();
    void selectedIDChanged();
    void showsEnlargedChanged();
    void showsSearchHintChanged();

private:
    struct Filters {
        QString query;
        std::optional<Date> day;
        std::optional<QString> app;
        friend bool operator==(const Filters&, const Filters&) = default;
    };
    /// What a refresh asks for, and what it then makes of the answer.
    struct Request {
        quint64 generation = 0;
        Filters filters;
        /// A list of the same filters is on show.
        bool isSameList = false;
        /// The last row of the list on show, where it is of the same filters.
        std::optional<QString> anchor = {};
        /// So many rows are wanted besides, at the old end.
        qsizetype extra = 0;
        /// A page of such filters.
        qsizetype base = 0;
        qsizetype wanted = 0;
    };
    struct Answer {
        QList<Memory> rows;
        LibraryStats stats;
        std::optional<QMap<Date, qsizetype>> dayMatches;
    };

    Request makeRequest();
    QCoro::Task<Answer> ask(Request request);
    QCoro::Task<> refreshStats();
    QCoro::Task<> refreshList();
    QCoro::Task<> refreshLater(Cancellation cancellation);
    QCoro::Task<> afterDeletion(QFuture<void> deletion, QString id, std::optional<QString> next);
    QCoro::Task<bool> isInLibrary(QString id);
    void letGo();
    /// Takes off the list what was deleted since it was made.
    void dropGone();
    /// Whether a refresh makes the list anew.
    bool isMadeAnew() const { return showsWorkspace() && !m_isListedByMeaning; }
    /// Puts these on show and tells of it. With `selected`, or else as `select` has it.
    void show(QList<Memory> memories, const std::optional<QString>& selected);
    void publish(const Request& request, Answer answer);
    void take(QList<Memory> memories);
    /// That one, or else one that is on the list. Whether it is another one than before; nobody is
    /// told.
    bool select(const std::optional<QString>& id);
    void setListedByMeaning(bool isListedByMeaning);
    void setLoading(bool isLoading);
    void setStats(const LibraryStats& stats);
    void scheduleRefresh();
    void raiseGeneration();
    std::optional<Date> startOfDay(Date date) const;

    Surroundings m_around;
    Recorder& m_recorder;
    HistoryStore* m_store;

    QList<Memory> m_memories;
    QHash<QString, qsizetype> m_positions;
    bool m_showsSecondsInStrip = false;
    Extent m_extent = Extent::Complete;
    bool m_isLoading = false;
    LibraryStats m_stats;
    std::optional<QMap<Date, qsizetype>> m_dayMatches;
    QString m_query;
    std::optional<Date> m_day;
    /// The day was today's when it was chosen.
    bool m_isToday = true;
    std::optional<QString> m_appFilter;
    std::optional<QString> m_selectedID;
    bool m_showsEnlarged = false;
    bool m_isListedByMeaning = false;
    int m_openWorkspaces = 0;
    /// Those of the last list that was published.
    std::optional<Filters> m_listedFilters;
    /// While earlier ones are being added: the last row before them.
    std::optional<QString> m_earlierFrom;
    /// Of the newest refresh; what an older one brings is dropped.
    quint64 m_generation = 0;
    /// Of the one that `isLoading` is of.
    quint64 m_loadingGeneration = 0;
    /// What is gone from the library and may be on the list still.
    QSet<QString> m_gone;
    /// How many deletions were asked for.
    quint64 m_deletions = 0;
    QFuture<QList<Memory>> m_fetching;
    QFuture<QMap<Date, qsizetype>> m_counting;
    /// Last: it is cancelled before anything above goes.
    Job m_refreshing;
};

} // namespace mossbank
