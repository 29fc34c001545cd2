// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/TextReader.h"

#include "MossbankCore/Capture/LineImages.h"
#include "MossbankCore/Capture/MarkedZeros.h"
#include "MossbankCore/Capture/ReadingOrder.h"
#include "MossbankCore/Capture/TextLineFinder.h"
#include "MossbankCore/Capture/WordChoice.h"
#include "MossbankCore/Support/Background.h"

#include <QCryptographicHash>
#include <QMutexLocker>
#include <QScopeGuard>
#include <QSet>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <ctime>
#include <exception>
#include <functional>
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
/// Below it also, on a picture that has lines of that language.
constexpr double kSure = 95.5;

QImage scaled(const QImage& line, int height)
{
    constexpr int kMargin = 10;
    constexpr int kBeside = 14;
    constexpr int kWhite = 255;
    const int width = std::max(1, line.width() * height / line.height());
    const QImage image =
        line.scaled(width, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QImage page(width + 2 * kBeside, height + 2 * kMargin, QImage::Format_Grayscale8);
    page.fill(kWhite);
    for (int y = 0; y < height; ++y)
        std::copy_n(image.constScanLine(y), width, page.scanLine(y + kMargin) + kBeside);
    return page;
}

QByteArray digestOf(const QImage& image)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(QByteArray::number(image.width()) + ' ');
    for (int y = 0; y < image.height(); ++y)
        hash.addData(QByteArrayView(image.constScanLine(y), image.width()));
    return hash.result();
}

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

/// Of all of the program's threads.
std::chrono::milliseconds processorTime()
{
    constexpr auto kTicks = CLOCKS_PER_SEC / 1000;
    return std::chrono::milliseconds(std::clock() / kTicks);
}

/// What a corner or an icon is read as.
bool isNoise(const QList<RecognizedWord>& words)
{
    constexpr double kSpeck = 60;
    return words.size() == 1 && words.first().text.size() <= 2 && words.first().confidence < kSpeck;
}

} // namespace

TextReader::TextReader(std::unique_ptr<LineRecognizer> recognizer,
                       std::chrono::milliseconds patience)
    : m_recognizer(std::move(recognizer))
    , m_patience(patience)
{
    // More would be quicker, and take from the user's own work. Each needs engines beside.
    m_pool.setMaxThreadCount(std::clamp(QThread::idealThreadCount(), 1, 2));
}

TextReader::~TextReader()
{
    m_pool.waitForDone();
}

QList<TextReader::Piece> TextReader::piecesOf(const QImage& picture)
{
    const QList<QRect> lines = inReadingOrder(TextLineFinder::find(picture));
    QList<Piece> pieces;
    for (qsizetype line = 0; line < lines.size(); ++line) {
        for (const QImage& image : imagesOfLine(picture, lines.at(line), lines))
            pieces.append({image, nullptr, digestOf(image), line});
    }
    return pieces;
}

TextReader::Reading TextReader::readingOf(const QList<RecognizedWord>& words,
                                          const QString& language)
{
    double sum = 0;
    qsizetype length = 0;
    for (const RecognizedWord& word : words) {
        sum += word.confidence * static_cast<double>(word.text.size());
        length += word.text.size();
    }
    return {words, language, length > 0 ? sum / static_cast<double>(length) : 0};
}

template <typename Work>
std::vector<char> TextReader::forEach(qsizetype count, Work work)
{
    std::atomic<qsizetype> next = 0;
    std::vector<char> isDone(static_cast<std::size_t>(count), 0);
    const auto workOn = [&] {
        for (qsizetype at = next++; at < count && !isGivenUp(); at = next++) {
            work(at);
            isDone[static_cast<std::size_t>(at)] = 1;
        }
    };
    const auto threads = std::min<qsizetype>(m_pool.maxThreadCount(), count);
    QList<QFuture<void>> workers;
    for (qsizetype thread = 0; thread < threads; ++thread)
        workers.append(inBackground(m_pool, workOn));
    // All of them, whatever one throws: they work on what is here.
    std::exception_ptr failure;
    for (QFuture<void>& worker : workers) {
        try {
            worker.waitForFinished();
        } catch (...) {
            failure = std::current_exception();
        }
    }
    if (failure)
        std::rethrow_exception(failure);
    return isDone;
}

void TextReader::prepare(QList<Piece>& pieces)
{
    AllPrepared all;
    QList<qsizetype> unknown;
    for (qsizetype place = 0; place < pieces.size(); ++place) {
        Piece& piece = pieces[place];
        piece.prepared = m_prepared.value(piece.digest);
        if (!piece.prepared)
            unknown.append(place);
    }
    forEach(unknown.size(), [&](qsizetype at) {
        Piece& piece = pieces[unknown.at(at)];
        auto prepared = std::make_shared<Prepared>();
        prepared->image = withPlainZeros(piece.image);
        prepared->cells = letterCellsOf(prepared->image);
        prepared->stops = fullStopsOf(prepared->image);
        piece.prepared = std::move(prepared);
    });
    for (const Piece& piece : std::as_const(pieces)) {
        if (piece.prepared)
            all.insert(piece.digest, piece.prepared);
    }
    m_prepared = std::move(all);
}

TextReader::Reading TextReader::readPiece(const Prepared& prepared, const Way& way)
{
    const QImage image =
        way.hasRoomAroundStops ? withRoomAround(prepared.stops, prepared.image) : prepared.image;
    return readingOf(
        m_recognizer->read(scaled(image, way.height), way.language, way.correctsLanguage),
        way.language);
}

QList<TextReader::Reading> TextReader::readAll(const QList<Piece>& pieces, const Way& way,
                                               const IsWanted& isWanted)
{
    QList<Reading> readings(pieces.size());
    QList<qsizetype> unknown;
    QSet<QByteArray> isBegun;
    const QByteArray kind = way.language.toUtf8() + (way.correctsLanguage ? '+' : '-') +
                            QByteArray::number(way.height) + (way.hasRoomAroundStops ? '.' : ' ');
    for (qsizetype place = 0; place < pieces.size(); ++place) {
        if (!isWanted(place) || !pieces.at(place).prepared)
            continue;
        const QByteArray key = kind + pieces.at(place).digest;
        if (m_current.contains(key) || isBegun.contains(key))
            continue;
        if (const auto known = m_known.constFind(key); known != m_known.cend()) {
            m_current.insert(key, *known);
        } else {
            isBegun.insert(key);
            unknown.append(place);
        }
    }
    readings.detach();
    const std::vector<char> isRead = forEach(unknown.size(), [&](qsizetype at) {
        const qsizetype place = unknown.at(at);
        readings[place] = readPiece(*pieces.at(place).prepared, way);
    });
    for (qsizetype at = 0; at < unknown.size(); ++at) {
        const qsizetype place = unknown.at(at);
        if (isRead[static_cast<std::size_t>(at)])
            m_current.insert(kind + pieces.at(place).digest, readings.at(place));
    }
    for (qsizetype place = 0; place < pieces.size(); ++place) {
        if (isWanted(place))
            readings[place] = m_current.value(kind + pieces.at(place).digest);
    }
    return readings;
}

QStringList TextReader::linesOf(const QList<Piece>& pieces, const QList<Reading>& readings)
{
    QStringList lines;
    qsizetype last = -1;
    for (qsizetype place = 0; place < pieces.size(); ++place) {
        if (isNoise(readings.at(place).words))
            continue;
        for (const RecognizedWord& word : readings.at(place).words) {
            if (pieces.at(place).line == last)
                lines.last() += u' ' + word.text;
            else
                lines.append(word.text);
            last = pieces.at(place).line;
        }
    }
    return lines;
}

QList<TextReader::Reading> TextReader::readInAll(const QList<Piece>& pieces, const Options& options)
{
    const QStringList languages =
        m_recognizer->languages(options.languages.value_or(QStringList()));
    Way way = {languages.first(), options.correctsLanguage, kReadHeight};
    QList<Reading> readings = readAll(pieces, way, [](qsizetype) { return true; });
    // The first are English and the user's own; of the rest there may be a hundred.
    constexpr qsizetype kNear = 3;
    for (qsizetype place = 1; place < languages.size(); ++place) {
        way.language = languages.at(place);
        improve(readings, pieces, way, place >= kNear);
    }
    way.height = kSecondHeight;
    for (const QString& language : languages) {
        way.language = language;
        readUnsureAgain(readings, pieces, way);
    }
    for (const QString& language : languages) {
        way.language = language;
        readLargerForDots(readings, pieces, way);
    }
    way.height = kReadHeight;
    for (const QString& language : languages) {
        way.language = language;
        readStopsApart(readings, pieces, way);
    }
    way = {languages.first(), options.correctsLanguage, kReadHeight};
    correctLetters(readings, pieces, way);
    return readings;
}

QSet<qsizetype> TextReader::longestBelow(double confidence, const QList<Reading>& readings,
                                         const QList<Piece>& pieces, qsizetype most)
{
    QList<qsizetype> places;
    for (qsizetype place = 0; place < pieces.size(); ++place) {
        if (readings.at(place).confidence < confidence)
            places.append(place);
    }
    if (places.size() > most) {
        std::ranges::stable_sort(places, std::greater(), [&](qsizetype place) {
            const QImage& image = pieces.at(place).image;
            return image.width() / image.height();
        });
        places.resize(most);
    }
    return {places.cbegin(), places.cend()};
}

void TextReader::improve(QList<Reading>& readings, const QList<Piece>& pieces, const Way& way,
                         bool isFar)
{
    constexpr double kBetter = 2;
    constexpr double kLeast = 70;
    const auto readBelow = [&](double confidence, qsizetype most) {
        const QSet<qsizetype> chosen = longestBelow(confidence, readings, pieces, most);
        return readAll(pieces, way, [&](qsizetype place) { return chosen.contains(place); });
    };
    // First where what is known is in doubt; where that shows that the language is there, also
    // where it is nearly sure: without its accents a word looks familiar.
    constexpr qsizetype kFew = 8;
    QList<Reading> others = readBelow(kDoubtful, isFar ? kFew : pieces.size());
    bool isThere = false;
    for (qsizetype place = 0; place < pieces.size() && !isThere; ++place) {
        const Reading& other = others.at(place);
        isThere = other.confidence > kDoubtful &&
                  other.confidence > readings.at(place).confidence + kBetter &&
                  hasOtherLetters(other.words);
    }
    // Of what has no words of it, it only makes other words.
    if (!isThere)
        return;
    others = readBelow(kSure, pieces.size());
    for (qsizetype place = 0; place < pieces.size(); ++place) {
        Reading other = others.at(place);
        if (other.confidence > std::max(kLeast, readings.at(place).confidence + 1))
            std::swap(readings[place], other);
        readings[place] = readingOf(betterWords(readings.at(place).words, other.words),
                                    readings.at(place).language);
    }
}

void TextReader::readUnsureAgain(QList<Reading>& readings, const QList<Piece>& pieces,
                                 const Way& way)
{
    const QList<Reading> seconds = readAll(pieces, way, [&](qsizetype place) {
        const Reading& reading = readings.at(place);
        return reading.confidence < kUnsure && reading.language == way.language;
    });
    for (qsizetype place = 0; place < pieces.size(); ++place) {
        const Reading& second = seconds.at(place);
        Reading& reading = readings[place];
        // Smaller, a dot or a space is lost more easily, and the recogniser does not miss it.
        const bool isTrusted =
            second.confidence >= kUnsure || second.words.size() > reading.words.size();
        if (isTrusted && second.confidence > reading.confidence)
            reading = second;
    }
}

QStringList TextReader::recognize(const QImage& image, const Options& options)
{
    if (image.isNull())
        return {};
    const auto rested = qScopeGuard([this] { restIfWanted(); });
    const QMutexLocker lock(&m_mutex);
    // A wish from before is not meant for this reading.
    if (m_wantsRest.exchange(false))
        forget();
    m_current.clear();
    QList<Piece> pieces = piecesOf(image.convertToFormat(QImage::Format_RGB32));
    m_began = processorTime();
    prepare(pieces);
    const QList<Reading> readings = readInAll(pieces, options);
    m_known = std::exchange(m_current, {});
    return linesOf(pieces, readings);
}

void TextReader::rest()
{
    m_wantsRest = true;
    // Not on the thread that asks: giving back a hundred megabytes takes a while.
    m_pool.start([this] { restIfWanted(); });
}

void TextReader::restIfWanted()
{
    // Asked again after each try: whoever had the lock may have let go of it before the wish.
    while (m_wantsRest && m_mutex.tryLock()) {
        if (m_wantsRest.exchange(false))
            forget();
        m_mutex.unlock();
    }
}

void TextReader::forget()
{
    m_known = {};
    m_current = {};
    m_prepared = {};
    m_recognizer->rest();
}

bool TextReader::isGivenUp() const
{
    return m_wantsRest || processorTime() - m_began > m_patience;
}

} // namespace mossbank
