// SPDX-License-Identifier: Apache-2.0
#include "tests/Scenes/Score.h"

#include "MossbankCore/Support/Characters.h"

#include <QHash>

#include <algorithm>

namespace mossbank::test {

namespace {

QHash<QString, qsizetype> counted(const QString& text)
{
    // Without a country the small letter of "İ" would be an i with two dots above.
    const QString dotted = text.normalized(QString::NormalizationForm_C).replace(u'İ', u'i');
    const QString folded = Characters::lowercased(dotted).normalized(QString::NormalizationForm_C);
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

/// What `more` has more often than `less`.
QStringList surplus(const QHash<QString, qsizetype>& more, const QHash<QString, qsizetype>& less)
{
    QStringList words;
    for (auto word = more.cbegin(); word != more.cend(); ++word) {
        for (qsizetype count = less.value(word.key()); count < word.value(); ++count)
            words += word.key();
    }
    words.sort();
    return words;
}

} // namespace

Score score(const QStringList& words, const QString& read)
{
    const QHash<QString, qsizetype> shown = counted(words.join(u' '));
    const QHash<QString, qsizetype> seen = counted(read);
    const QStringList missed = surplus(shown, seen);
    const QStringList junk = surplus(seen, shown);
    const auto all = static_cast<double>(std::max<qsizetype>(1, sum(shown)));
    return {.found = 1 - static_cast<double>(missed.size()) / all,
            .junkPerHundred = 100 * static_cast<double>(junk.size()) / all,
            .missed = missed,
            .junk = junk};
}

} // namespace mossbank::test
