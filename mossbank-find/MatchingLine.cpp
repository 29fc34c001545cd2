// SPDX-License-Identifier: Apache-2.0
#include "mossbank-find/MatchingLine.h"

#include "MossbankCore/Library/HistoryStore.h"

#include <QRegularExpression>
#include <QSet>

#include <algorithm>

namespace mossbank {

MatchingLine::MatchingLine(QStringView query)
{
    QSet<QString> known;
    for (const QStringView word : Characters::words(query)) {
        const QString lower = Characters::lowercased(word);
        // A word typed twice is no better reason for a line than once.
        if (known.contains(lower))
            continue;
        known.insert(lower);
        Spellings spellings;
        for (const QString& spelling : HistoryStore::dotlessVariants(lower))
            spellings.emplace_back(spelling);
        m_words.push_back(std::move(spellings));
    }
}

QString MatchingLine::in(const QString& text) const
{
    static const QRegularExpression kLineEnd(
        QStringLiteral("[\\n\\r\\x{0b}\\x{0c}\\x{85}\\x{2028}\\x{2029}]"));
    QStringView best;
    qsizetype most = 0;
    for (const QStringView line : QStringView(text).split(kLineEnd)) {
        const qsizetype words = wordsIn(line);
        if (words > most) {
            most = words;
            best = line;
        }
    }
    return best.trimmed().toString();
}

qsizetype MatchingLine::wordsIn(QStringView line) const
{
    std::vector<FoldedText> words;
    for (const QStringView word : Characters::words(line))
        words.emplace_back(word);
    const auto isHere = [&words](const Spellings& spellings) {
        return std::any_of(words.begin(), words.end(), [&spellings](const FoldedText& word) {
            return std::any_of(
                spellings.begin(), spellings.end(),
                [&word](const FoldedText& spelling) { return word.startsWith(spelling); });
        });
    };
    return std::count_if(m_words.begin(), m_words.end(), isHere);
}

} // namespace mossbank
