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

/// A letter or digit, and what stands between it and the one before.
struct Letter {
    QChar itself;
    QString before;
};

/// The letters of a line; the last is none, and has what stands after the others.
QList<Letter> lettersOf(const QList<RecognizedWord>& words)
{
    QList<Letter> letters;
    QString before;
    for (const RecognizedWord& word : words) {
        if (!letters.isEmpty() || !before.isEmpty())
            before += u' ';
        for (const QChar character : word.text) {
            if (!character.isLetterOrNumber() && !character.isMark()) {
                before += character;
                continue;
            }
            const bool isZero = character == u'0' || character == u'O';
            letters.append({isZero ? QChar(u'o') : character, std::exchange(before, {})});
        }
    }
    letters.append({QChar(), before});
    return letters;
}

/// Whether what stands between two letters is a sign that a full stop is read as.
bool isLikeStop(const QString& between)
{
    const QString sign = between.trimmed();
    return sign.size() == 1 && QStringView(u".:;,").contains(sign.front());
}

/// Puts a full stop into what was read, before the letter of that number or at the end. Takes away
/// the space there unless `isSpaced`.
void putStop(QList<RecognizedWord>& words, qsizetype letter, bool isSpaced)
{
    for (qsizetype place = 0; place < words.size(); ++place) {
        QString& text = words[place].text;
        for (qsizetype at = 0; at < text.size(); ++at) {
            if (!text.at(at).isLetterOrNumber() && !text.at(at).isMark())
                continue;
            if (letter-- > 0)
                continue;
            if (at > 0 || place == 0) {
                text.insert(at, u'.');
                return;
            }
            RecognizedWord& previous = words[place - 1];
            previous.text += u'.';
            if (isSpaced)
                return;
            previous.text += text;
            previous.confidence = std::min(previous.confidence, words.at(place).confidence);
            words.removeAt(place);
            return;
        }
    }
    words.last().text += u'.';
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

qsizetype fullStopsIn(const QList<RecognizedWord>& words)
{
    constexpr qsizetype kInEllipsis = 3;
    qsizetype count = 0;
    for (const RecognizedWord& word : words) {
        count += word.text.count(u'.') + word.text.count(u':');
        count += word.text.count(u'…') * kInEllipsis;
    }
    return count;
}

QList<RecognizedWord> withLostStops(const QList<RecognizedWord>& words,
                                    const QList<RecognizedWord>& second, qsizetype lost)
{
    const QList<Letter> letters = lettersOf(words);
    const QList<Letter> others = lettersOf(second);
    const bool isSame = std::ranges::equal(letters, others, {}, &Letter::itself, &Letter::itself);
    if (words.isEmpty() || !isSame)
        return words;
    QList<RecognizedWord> whole = words;
    for (qsizetype place = letters.size() - 1; place >= 0; --place) {
        const QString& between = others.at(place).before;
        if (!letters.at(place).before.trimmed().isEmpty() || !isLikeStop(between))
            continue;
        putStop(whole, place, between.endsWith(u' '));
        --lost;
    }
    return lost == 0 ? whole : words;
}

} // namespace mossbank
