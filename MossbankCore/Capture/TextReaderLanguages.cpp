// SPDX-License-Identifier: Apache-2.0
//
// In which languages a reader of lines reads what.
#include "MossbankCore/Capture/TextReader.h"
#include "MossbankCore/Capture/WordChoice.h"
#include "MossbankCore/Support/Failure.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace mossbank {

namespace {

/// The height in pixels at which lines are read.
constexpr int kReadHeight = 44;
/// And once more, smaller, when that gave nothing sure: a line without ascenders is stretched too
/// far.
constexpr int kSecondHeight = 32;
/// Below it a reading is tried once more.
constexpr double kUnsure = 80;
/// Below it another language may fit better.
constexpr double kDoubtful = 88;
/// Below it also, near lines of that language.
constexpr double kSure = 95.5;

/// In heights. So long a line takes so long that whoever waits for a picture on which it alone has
/// changed would notice; a shorter one is not worth another thread's work that may be in vain.
constexpr double kLongAlone = 28;

/// Whether there is a letter that English does not have.
bool hasOtherLetters(const QList<RecognizedWord>& words)
{
    constexpr char16_t kLastOfAscii = 0x7f;
    return std::ranges::any_of(words, [](const RecognizedWord& word) {
        return std::ranges::any_of(word.text, [](QChar character) {
            return character.unicode() > kLastOfAscii && character.isLetter();
        });
    });
}

/// Of `places`, which ascend, so many next to `place` before it, and as many behind it.
QList<qsizetype> nextTo(qsizetype place, const QList<qsizetype>& places, qsizetype eachWay)
{
    const qsizetype at = std::ranges::lower_bound(places, place) - places.begin();
    const qsizetype first = std::max<qsizetype>(0, at - eachWay);
    return places.mid(first, at + eachWay + 1 - first);
}

} // namespace

std::exception_ptr TextReader::readAhead(const QList<Piece>& pieces, const Way& way,
                                         const QString& other)
{
    Way otherWay = way;
    otherWay.language = other;
    const QList<qsizetype> unknown = unknownOf(pieces, way, [](qsizetype) { return true; });
    std::vector<std::optional<PieceReading>> found(static_cast<std::size_t>(unknown.size()));
    std::vector<std::optional<PieceReading>> others(found.size());
    std::atomic<bool> isOver = other.isEmpty();
    std::exception_ptr failure;
    const auto readInOther = [&](qsizetype at) {
        if (isOver)
            return;
        try {
            others[static_cast<std::size_t>(at)] = readPiece(pieces.at(unknown.at(at)), otherWay);
        } catch (const Failure&) {
            if (!isOver.exchange(true))
                failure = std::current_exception();
        }
    };
    const int threads = m_pool.maxThreadCount();
    const bool isLongAlone = threads > 1 && unknown.size() == 1 &&
                             lengthOf(pieces.at(unknown.first()).image.whole) >= kLongAlone;
    forEach(isLongAlone ? 2 : unknown.size(), threads, [&](qsizetype at) {
        if (at == unknown.size())
            return readInOther(0);
        const PieceReading reading = readPiece(pieces.at(unknown.at(at)), way);
        found[static_cast<std::size_t>(at)] = reading;
        if (reading.confidence < kDoubtful && !isLongAlone)
            readInOther(at);
    });
    for (std::size_t at = 0; at < found.size(); ++at) {
        const Piece& piece = pieces.at(unknown.at(static_cast<qsizetype>(at)));
        if (found[at])
            m_current.insert(keyOf(piece, way), *found[at]);
        if (others[at])
            m_current.insert(keyOf(piece, otherWay), *others[at]);
    }
    return failure;
}

QList<TextReader::PieceReading> TextReader::readInAll(const QList<Piece>& pieces,
                                                      const Options& options)
{
    const QStringList named = options.languages.value_or(QStringList());
    LineLanguages languages = m_recognizer->languages(named);
    const QString first = languages.expected.takeFirst();
    Way way = {first, options.correctsLanguage, kReadHeight};
    const QString second = languages.expected.value(0);
    const bool isLeftOut = named.isEmpty() && m_leftOut.contains(second);
    const std::exception_ptr failure = readAhead(pieces, way, isLeftOut ? QString() : second);
    QList<PieceReading> readings = readAll(pieces, way, [](qsizetype) { return true; });
    // What was asked for and cannot be done is told. Of what is only installed a damaged model must
    // not be the end of all reading.
    const auto readIn = [&](const QString& language, const auto& work) {
        if (named.isEmpty() && m_leftOut.contains(language))
            return;
        way.language = language;
        try {
            work();
        } catch (const Failure&) {
            if (!named.isEmpty() || language == first)
                throw;
            m_leftOut.insert(language);
        }
    };
    if (failure)
        readIn(second, [&] { std::rethrow_exception(failure); });
    for (const QString& language : std::as_const(languages.expected))
        readIn(language, [&] { improve(readings, pieces, way, pieces.size()); });
    // Each takes engines that are slow to load and large. With more of them nobody can tell which
    // the user needs.
    constexpr qsizetype kMostOthers = 4;
    constexpr qsizetype kFew = 8;
    if (languages.others.size() > kMostOthers)
        languages.others.clear();
    for (const QString& language : std::as_const(languages.others)) {
        readIn(language, [&] {
            way.isOnOneThread = true;
            improve(readings, pieces, way, kFew / languages.others.size());
        });
    }
    way.isOnOneThread = false;
    const QStringList all = QStringList(first) + languages.expected + languages.others;
    way.height = kSecondHeight;
    for (const QString& language : all)
        readIn(language, [&] { readUnsureAgain(readings, pieces, way); });
    for (const QString& language : all)
        readIn(language, [&] { readLargerForDots(readings, pieces, way); });
    way.height = kReadHeight;
    for (const QString& language : all)
        readIn(language, [&] { readStopsApart(readings, pieces, way); });
    way = {first, options.correctsLanguage, kReadHeight};
    correctLetters(readings, pieces, way);
    return readings;
}

QSet<qsizetype> TextReader::longestBelow(double confidence, const QList<PieceReading>& readings,
                                         const QList<Piece>& pieces, qsizetype most)
{
    QList<qsizetype> places = placesBelow(confidence, readings);
    if (places.size() > most) {
        std::ranges::stable_sort(places, std::greater(), [&](qsizetype place) {
            const QImage& image = pieces.at(place).image.whole;
            return image.width() / image.height();
        });
        places.resize(most);
    }
    return withAlike({places.cbegin(), places.cend()}, pieces);
}

QSet<qsizetype> TextReader::withAlike(QSet<qsizetype> places, const QList<Piece>& pieces)
{
    QSet<QByteArray> digests;
    for (const qsizetype place : std::as_const(places))
        digests.insert(pieces.at(place).digest);
    for (qsizetype place = 0; place < pieces.size(); ++place) {
        if (digests.contains(pieces.at(place).digest))
            places.insert(place);
    }
    return places;
}

QList<qsizetype> TextReader::placesBelow(double confidence, const QList<PieceReading>& readings)
{
    QList<qsizetype> places;
    for (qsizetype place = 0; place < readings.size(); ++place) {
        if (readings.at(place).confidence < confidence)
            places.append(place);
    }
    return places;
}

void TextReader::improve(QList<PieceReading>& readings, const QList<Piece>& pieces, Way way,
                         qsizetype most)
{
    constexpr double kBetter = 2;
    constexpr double kLeast = 70;
    // First where what is known is in doubt.
    QSet<qsizetype> tried = longestBelow(kDoubtful, readings, pieces, most);
    QList<PieceReading> others =
        readAll(pieces, way, [&](qsizetype place) { return tried.contains(place); });
    QList<qsizetype> found;
    for (qsizetype place = 0; place < pieces.size(); ++place) {
        const PieceReading& other = others.at(place);
        if (other.confidence > kDoubtful &&
            other.confidence > readings.at(place).confidence + kBetter &&
            hasOtherLetters(other.words))
            found.append(place);
    }
    // Of what has no words of it, it only makes other words.
    if (found.isEmpty())
        return;
    way.isOnOneThread = false;
    // Where that shows that the language is there, also beside it where what is known is nearly
    // sure: without its accents a word looks familiar. And so on from what that finds: a single
    // line of a language does not make all that stands elsewhere doubtful.
    const QList<qsizetype> unsure = placesBelow(kSure, readings);
    // A message in another language takes a small part of the time of the whole picture.
    constexpr qsizetype kPart = 20;
    const qsizetype eachWay = std::clamp<qsizetype>(pieces.size() / kPart, 2, 4);
    while (!found.isEmpty()) {
        QSet<qsizetype> beside;
        for (const qsizetype place : std::as_const(found)) {
            for (const qsizetype other : nextTo(place, unsure, eachWay)) {
                if (!tried.contains(other))
                    beside.insert(other);
            }
        }
        found.clear();
        beside = withAlike(std::move(beside), pieces);
        tried += beside;
        const QList<PieceReading> more =
            readAll(pieces, way, [&](qsizetype place) { return beside.contains(place); });
        for (const qsizetype place : std::as_const(beside)) {
            others[place] = more.at(place);
            if (others.at(place).confidence > readings.at(place).confidence &&
                hasOtherLetters(others.at(place).words))
                found.append(place);
        }
    }
    for (const qsizetype place : std::as_const(tried)) {
        PieceReading other = others.at(place);
        if (other.confidence > std::max(kLeast, readings.at(place).confidence + 1))
            std::swap(readings[place], other);
        readings[place] = readingOf(betterWords(readings.at(place).words, other.words),
                                    readings.at(place).language);
    }
}

void TextReader::readUnsureAgain(QList<PieceReading>& readings, const QList<Piece>& pieces,
                                 const Way& way)
{
    const QList<PieceReading> seconds = readAll(pieces, way, [&](qsizetype place) {
        const PieceReading& reading = readings.at(place);
        return reading.confidence < kUnsure && reading.language == way.language;
    });
    for (qsizetype place = 0; place < pieces.size(); ++place) {
        const PieceReading& second = seconds.at(place);
        PieceReading& reading = readings[place];
        // Smaller, a dot or a space is lost more easily, and the recogniser does not miss it.
        const bool isTrusted =
            second.confidence >= kUnsure || second.words.size() > reading.words.size();
        if (isTrusted && second.confidence > reading.confidence)
            reading = second;
    }
}

} // namespace mossbank
