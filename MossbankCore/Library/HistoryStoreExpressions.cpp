// SPDX-License-Identifier: Apache-2.0
//
// What users type, in FTS5's language. A word is letters, marks and digits alone, so nothing in it
// can mean anything to FTS5, and nothing needs escaping.
#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Meaning/Stopwords.h"
#include "MossbankCore/Support/Characters.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

bool isLetterI(QStringView character)
{
    return character == u"i" || character == u"ı";
}

/// A word as the beginning of a word.
QString prefixTerm(const QString& word)
{
    return u"\"%1\"*"_s.arg(word);
}

/// A lower-case word in any of its spellings.
QString anySpelling(const QString& word)
{
    QStringList terms;
    for (const QString& variant : HistoryStore::dotlessVariants(word))
        terms.append(prefixTerm(variant));
    return terms.join(u" OR "_s);
}

/// Whether a word of a question says something of what is asked for.
bool isTelling(const QString& word)
{
    constexpr qsizetype kFewest = 3;
    const QList<uint> codePoints = word.toUcs4();
    const auto isNumber = [](uint codePoint) {
        return QChar::isNumber(codePoint);
    };
    return Characters::count(word) >= kFewest && !Stopwords::inQuestions().contains(word) &&
           !std::ranges::all_of(codePoints, isNumber);
}

/// Those of a question made of short words and numbers alone.
bool isAllThereIs(const QString& word)
{
    constexpr qsizetype kFewest = 2;
    return Characters::count(word) >= kFewest;
}

/// The words to look for, each once: the longest, which tell most, in the order of the alphabet,
/// so that the same words ask the same whatever their order.
QStringList longest(const QStringList& words)
{
    constexpr qsizetype kMost = 12;
    QStringList kept = words;
    kept.removeDuplicates();
    const auto isBefore = [](const QString& one, const QString& other) {
        return std::pair(-Characters::count(one), one) <
               std::pair(-Characters::count(other), other);
    };
    std::ranges::sort(kept, isBefore);
    kept = kept.first(std::min(kept.size(), kMost));
    kept.sort();
    return kept;
}

} // namespace

QStringList HistoryStore::dotlessVariants(const QString& word)
{
    constexpr qsizetype kMostWidened = 3; // eight spellings
    const auto characters = Characters::split(word);
    const auto lettersI = std::count_if(characters.begin(), characters.end(), isLetterI);
    if (lettersI == 0 || lettersI > kMostWidened)
        return {word};

    QStringList variants = {QString()};
    for (const QStringView character : characters) {
        QStringList longer;
        for (const QString& variant : std::as_const(variants)) {
            if (isLetterI(character))
                longer << variant + u'i' << variant + u'ı';
            else
                longer << QString(variant).append(character);
        }
        variants = std::move(longer);
    }
    return variants;
}

std::optional<QString> HistoryStore::searchExpression(QStringView typed)
{
    QStringList terms;
    for (const QStringView typedWord : Characters::words(typed)) {
        const QString word = Characters::lowercased(typedWord);
        const bool hasOneSpelling = dotlessVariants(word).size() == 1;
        terms.append(hasOneSpelling ? anySpelling(word) : u'(' + anySpelling(word) + u')');
    }
    if (terms.isEmpty())
        return std::nullopt;
    return terms.join(u" AND "_s);
}

std::optional<QString> HistoryStore::questionExpression(QStringView question)
{
    QStringList words;
    for (const QStringView word : Characters::words(question))
        words.append(Characters::lowercased(word));
    QStringList kept;
    std::ranges::copy_if(words, std::back_inserter(kept), isTelling);
    if (kept.isEmpty())
        std::ranges::copy_if(words, std::back_inserter(kept), isAllThereIs);
    if (kept.isEmpty())
        return std::nullopt;
    QStringList terms;
    for (const QString& word : longest(kept))
        terms.append(anySpelling(word));
    return terms.join(u" OR "_s);
}

} // namespace mossbank
