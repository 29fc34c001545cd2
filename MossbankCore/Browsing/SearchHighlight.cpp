// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Browsing/SearchHighlight.h"

#include "MossbankCore/Library/HistoryStore.h"

#include <algorithm>

namespace mossbank {

namespace {

using Range = FoldedText::Range;

/// Every spelling of every word of the query.
QStringList needlesOf(QStringView query)
{
    QStringList needles;
    for (const QStringView word : Characters::words(query))
        needles += HistoryStore::dotlessVariants(Characters::lowercased(word));
    return needles;
}

void append(std::vector<Range>& ranges, QStringView text, const FoldedText& folded,
            const FoldedText& needle)
{
    qsizetype from = 0;
    while (const auto found = folded.find(needle, from)) {
        const qsizetype end = found->start + found->length;
        if (!Characters::isWithinWord(text, found->start))
            ranges.push_back({found->start, Characters::endOfWord(text, end) - found->start});
        from = end;
    }
}

/// Of ranges in the order of their starts: those that meet are one.
std::vector<Range> merged(const std::vector<Range>& ranges)
{
    std::vector<Range> apart;
    for (const Range& range : ranges) {
        if (!apart.empty() && range.start <= apart.back().start + apart.back().length) {
            Range& last = apart.back();
            const qsizetype end = std::max(last.start + last.length, range.start + range.length);
            last.length = end - last.start;
        } else {
            apart.push_back(range);
        }
    }
    return apart;
}

} // namespace

std::vector<Range> SearchHighlight::ranges(QStringView text, QStringView query)
{
    const QStringList needles = needlesOf(query);
    if (needles.isEmpty() || text.isEmpty())
        return {};
    const FoldedText folded(text);
    std::vector<Range> ranges;
    for (const QString& needle : needles)
        append(ranges, text, folded, FoldedText(needle));
    std::ranges::stable_sort(ranges, {}, &Range::start);
    return merged(ranges);
}

} // namespace mossbank
