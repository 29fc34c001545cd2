// SPDX-License-Identifier: Apache-2.0
#include "tests/Scenes/Score.h"

#include "MossbankCore/Support/Characters.h"

#include <QHash>

#include <algorithm>

namespace mossbank::test {

namespace {

QHash<QString, qsizetype> counted(const QString& text)
{
    const QString folded = Characters::lowercased(text).normalized(QString::NormalizationForm_C);
    QHash<QString, qsizetype> counts;
    for (const QStringView word : Characters::words(folded))
        ++counts[word.toString()];
    return counts;
}

qsizetype sum(const QHash<QString, qsizetype>& counts)
{
    qsizetype all = 0;
    for (const qsizetype count : counts)
        all += count;
    return all;
}

} // namespace

Score score(const QStringList& words, const QString& read)
{
    const QHash<QString, qsizetype> shown = counted(words.join(u' '));
    const QHash<QString, qsizetype> seen = counted(read);
    qsizetype hits = 0;
    for (auto word = shown.cbegin(); word != shown.cend(); ++word)
        hits += std::min(word.value(), seen.value(word.key()));
    const auto junk = static_cast<double>(sum(seen) - hits);
    const auto all = static_cast<double>(std::max<qsizetype>(1, sum(shown)));
    return {.found = shown.isEmpty() ? 1 : static_cast<double>(hits) / all,
            .junkPerHundred = 100 * junk / all};
}

} // namespace mossbank::test
