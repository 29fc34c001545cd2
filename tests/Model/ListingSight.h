// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/Model/ListingRig.h"
#include "tests/Model/PlainListing.h"

#include <algorithm>
#include <utility>

namespace mossbank {

/// Sees each change of a list, whatever is done to it, and holds it against one that has the whole
/// library at once.
class ListingSight : protected ListingRig {
protected:
    /// A screenshot whose removal was asked for and has not come to its end, as far as is known.
    struct Deletion {
        QString id;
        std::optional<QString> next;
        bool fails = false;
    };

    /// Nothing has been done or seen yet; the library is empty.
    void forget()
    {
        m_library = {};
        m_plain = {};
        m_plain.filters.day = kToday;
        m_deletions.clear();
        m_error.reset();
        m_toldOf.clear();
        m_trouble.clear();
        m_isBroken = m_hasPublished = false;
        m_published = 0;
    }

    /// Sees the list from now on, for as long as it is there.
    void watch()
    {
        Listing* const list = &listing();
        Recorder* const recorder = m_rig->recorder.get();
        QObject::connect(list, &Listing::memoriesChanged, list, [this] { seeList(); });
        QObject::connect(list, &Listing::isLoadingChanged, list, [this] { seeLoading(); });
        QObject::connect(list, &Listing::selectedIDChanged, list, [this] { seeSelection(); });
        QObject::connect(recorder, &Recorder::errorMessageChanged, recorder,
                         [this] { seeError(); });
    }

    void tell(const QString& trouble)
    {
        if (m_trouble.isEmpty())
            m_trouble = trouble + QStringLiteral(", after ") + m_log.join(QStringLiteral(", "));
    }

    /// A library that does not answer is heard of what it removed before.
    void seeRowsDropped()
    {
        PlainListing expected = m_plain;
        for (const Deletion& deletion : std::as_const(m_deletions)) {
            if (!deletion.fails && expected.drop(deletion.id) &&
                expected.difference(idsOnShow(), listing().extent(), listing().selectedID())
                    .isEmpty()) {
                m_plain = expected;
                return;
            }
        }
        tell(QStringLiteral("a library that does not answer has been heard"));
    }

    void seeList()
    {
        if (m_isBroken) {
            seeRowsDropped();
            return;
        }
        m_hasPublished = true;
        ++m_published;
        // Of the deletions under way, any number from the first may be done.
        PlainLibrary library = m_library;
        QString difference;
        for (qsizetype done = 0; done <= m_deletions.size(); ++done) {
            PlainListing expected = m_plain;
            expected.publish(library);
            const QString trouble =
                expected.difference(idsOnShow(), listing().extent(), listing().selectedID());
            if (trouble.isEmpty()) {
                m_plain = expected;
                return;
            }
            difference = difference.isEmpty() ? trouble : difference;
            if (done < m_deletions.size() && !m_deletions.at(done).fails)
                library.remove(m_deletions.at(done).id);
        }
        tell(difference);
    }

    void seeLoading()
    {
        if (listing().isLoading()) {
            m_hasPublished = false;
        } else if (!m_hasPublished) {
            m_plain.fail();
            if (!m_isBroken || error() != kBroken)
                tell(QStringLiteral("it ended without a list, and with \"%1\"").arg(error()));
        }
    }

    void seeSelection()
    {
        const auto isNext = [this](const Deletion& deletion) {
            return deletion.next && deletion.next == listing().selectedID();
        };
        if (!m_isActing && std::ranges::any_of(m_deletions, isNext))
            m_plain.selected = listing().selectedID();
    }
    void checkSelection()
    {
        if (listing().selectedID() != m_plain.selected)
            tell(QStringLiteral("%1 is selected, and %2 was")
                     .arg(selected(), m_plain.selected.value_or(QStringLiteral("none"))));
    }

    void forgetError()
    {
        m_error.reset();
        m_toldOf.clear();
        m_rig->recorder->setErrorMessage(std::nullopt);
    }
    void seeError()
    {
        const auto& message = m_rig->recorder->errorMessage();
        const bool isMeant =
            message == m_error || (message == kBroken && m_isBroken) ||
            (message == kNotDeleted && std::ranges::any_of(m_deletions, &Deletion::fails));
        if (!isMeant)
            tell(QStringLiteral("it says \"%1\"").arg(error()));
        m_error = message;
        m_toldOf.append(error());
    }

    /// The list with nothing on its way.
    void checkWhatIsOnShow()
    {
        checkSelection();
        if (m_rig->recorder->errorMessage() != m_error)
            tell(QStringLiteral("it says \"%1\"").arg(error()));
        if (idsOnShow() != m_plain.shown())
            tell(QStringLiteral("the list has changed by itself"));
        if (m_isBroken)
            return;
        const QStringList all = m_library.matching(m_plain.filters);
        if (m_plain.listed() != m_plain.filters ||
            m_plain.shown() != all.first(std::min(all.size(), m_plain.shown().size())))
            tell(QStringLiteral("the list is not of the library as it is"));
        const bool countsDays = !m_plain.filters.query.isEmpty() || m_plain.filters.app;
        if (listing().dayMatches() !=
            (countsDays ? std::optional(m_library.days(m_plain.filters)) : std::nullopt))
            tell(QStringLiteral("what matches on which day is told wrongly"));
        if (listing().stats().count != m_library.count())
            tell(QStringLiteral("%1 are counted of %2")
                     .arg(listing().stats().count)
                     .arg(m_library.count()));
    }

    static inline const QString kBroken = QStringLiteral("no such table: memories");
    static inline const QString kNotDeleted =
        QStringLiteral("Could not delete the screenshot: ") + kBroken;

    PlainLibrary m_library;
    PlainListing m_plain;
    QList<Deletion> m_deletions;
    /// What the user was told last.
    std::optional<QString> m_error;
    QStringList m_toldOf;
    QString m_trouble;
    QStringList m_log;
    int m_published = 0;
    bool m_isBroken = false;
    /// Whether a list came since it was last begun to load one.
    bool m_hasPublished = false;
    /// The test itself is choosing a screenshot.
    bool m_isActing = false;
};

} // namespace mossbank
