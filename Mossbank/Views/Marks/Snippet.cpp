// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Marks/Snippet.h"

#include "MossbankCore/Browsing/SearchHighlight.h"

#include <algorithm>

namespace mossbank {

namespace {

/// UTF-16 units before the match, and in all: more than two lines of a row have room for.
constexpr qsizetype kBefore = 40;
constexpr qsizetype kMost = 240;

/// The beginning of the word at `place`, or of the one after it.
qsizetype beginningOfWord(QStringView text, qsizetype place)
{
    if (place == 0)
        return 0;
    // A word that is longer than all that is shown is cut.
    const qsizetype last = std::min(place + kBefore, text.size());
    for (qsizetype at = place; at < last; ++at) {
        if (text[at - 1].isSpace())
            return at;
    }
    return place;
}

} // namespace

Snippet Snippet::of(QStringView text, QStringView query)
{
    const auto matches = SearchHighlight::ranges(text, query);
    const qsizetype first = matches.empty() ? 0 : matches.front().start;
    const qsizetype begin = beginningOfWord(text, std::max<qsizetype>(first - kBefore, 0));
    const QStringView piece = text.mid(begin, kMost);
    Snippet snippet;
    if (begin > 0)
        snippet.text += QChar(0x2026);
    // Where each unit of the piece has come to lie; last, its end.
    std::vector<qsizetype> places;
    places.reserve(static_cast<std::size_t>(piece.size()) + 1);
    for (const QChar unit : piece) {
        const bool isSpace = unit.isSpace();
        const bool isLeftOut = isSpace && (snippet.text.isEmpty() || snippet.text.endsWith(u' ') ||
                                           snippet.text == QChar(0x2026));
        places.push_back(snippet.text.size());
        if (!isLeftOut)
            snippet.text += isSpace ? QChar(u' ') : unit;
    }
    places.push_back(snippet.text.size());
    for (const auto& match : matches) {
        const qsizetype start = match.start - begin;
        const qsizetype end = std::min(start + match.length, piece.size());
        if (start >= 0 && start < end) {
            const qsizetype from = places[static_cast<std::size_t>(start)];
            snippet.marks.push_back({from, places[static_cast<std::size_t>(end)] - from});
        }
    }
    return snippet;
}

} // namespace mossbank
