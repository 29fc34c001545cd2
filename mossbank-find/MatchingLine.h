// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/Characters.h"

#include <QString>
#include <QStringView>

#include <vector>

namespace mossbank {

/// Picks the line of a screenshot's text that shows why it was found.
class MatchingLine {
public:
    /// Prepares for the words of `query`, which are matched as the search itself does: each as a
    /// word's beginning, without regard to case and diacritics, "i" and "ı" as either.
    explicit MatchingLine(QStringView query);

    /// The line of `text` with the most of the words in it, the first among equals, without the
    /// white space around it. Empty when no line has any.
    QString in(const QString& text) const;

private:
    /// One word of the query in all its spellings.
    using Spellings = std::vector<FoldedText>;

    qsizetype wordsIn(QStringView line) const;

    std::vector<Spellings> m_words;
};

} // namespace mossbank
