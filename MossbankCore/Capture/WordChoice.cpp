// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/WordChoice.h"

#include <algorithm>
#include <utility>

namespace mossbank {

namespace {

/// Below it an accent may be a speck.
constexpr double kLeastForAccents = 70;
/// By less than this no reading is better than another.
constexpr double kBetter = 1;

/// The letters without what stands above and below them.
QString plain(const QString& text)
{
    QString letters;
    for (const QChar character : text.normalized(QString::NormalizationForm_D)) {
        if (!character.isMark())
            letters += character == u'ı' ? QChar(u'i') : character;
    }
    return letters;
}

/// Whether `word` is `bare` with accents. A model of a language without them cannot see any,
/// however sure it is.
bool isWithAccents(const RecognizedWord& word, const RecognizedWord& bare)
{
    return word.confidence >= kLeastForAccents && word.text != bare.text &&
           plain(bare.text) == bare.text && plain(word.text) == bare.text;
}

} // namespace

QList<RecognizedWord> betterWords(const QList<RecognizedWord>& preferred,
                                  const QList<RecognizedWord>& other)
{
    if (preferred.size() != other.size())
        return preferred;
    QList<RecognizedWord> words = preferred;
    for (qsizetype place = 0; place < words.size(); ++place) {
        const RecognizedWord& second = other.at(place);
        const RecognizedWord& first = std::as_const(words).at(place);
        if (isWithAccents(second, first) ||
            (!isWithAccents(first, second) && second.confidence > first.confidence + kBetter))
            words[place] = second;
    }
    return words;
}

QList<RecognizedWord> withDots(const QList<RecognizedWord>& words,
                               const QList<RecognizedWord>& second)
{
    struct Line {
        QString letters; // what looks alike the same, without dots
        qsizetype dots = 0;
        double confidence = 100;
    };
    const auto lineOf = [](const QList<RecognizedWord>& all) {
        Line line;
        for (const RecognizedWord& word : all) {
            line.confidence = std::min(line.confidence, word.confidence);
            for (const QChar character : word.text) {
                if (character == u'.')
                    ++line.dots;
                else
                    line.letters +=
                        character == u'0' || character == u'O' ? QChar(u'o') : character;
            }
        }
        return line;
    };
    const Line first = lineOf(words);
    const Line other = lineOf(second);
    if (first.letters != other.letters)
        return words;
    const bool isSurer = other.dots == first.dots && other.confidence > first.confidence + kBetter;
    return other.dots > first.dots || isSurer ? second : words;
}

} // namespace mossbank
