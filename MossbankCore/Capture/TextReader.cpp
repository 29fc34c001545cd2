// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/TextReader.h"

#include "MossbankCore/Capture/MarkedZeros.h"
#include "MossbankCore/Capture/ReadingOrder.h"
#include "MossbankCore/Capture/TextLineFinder.h"
#include "MossbankCore/Support/Background.h"
#include "MossbankCore/Support/SystemClock.h"

#include <QCryptographicHash>
#include <QMutexLocker>
#include <QScopeGuard>
#include <QSet>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <exception>
#include <functional>
#include <utility>
#include <vector>

namespace mossbank {

namespace {

/// `pixels`: the width of the line in pixels, whatever the image has of each.
QImage scaled(const QImage& line, int pixels, int height)
{
    constexpr int kMargin = 10;
    constexpr int kBeside = 14;
    constexpr int kWhite = 255;
    const int width = std::max(1, pixels * height / line.height());
    const QImage image =
        line.scaled(width, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QImage page(width + 2 * kBeside, height + 2 * kMargin, QImage::Format_Grayscale8);
    page.fill(kWhite);
    for (int y = 0; y < height; ++y)
        std::copy_n(image.constScanLine(y), width, page.scanLine(y + kMargin) + kBeside);
    return page;
}

/// Each column mixed with those beside it: recognisers know letters as whole pixels show them.
QImage softened(const QImage& line)
{
    QImage soft = line;
    for (int y = 0; y < line.height(); ++y) {
        const uchar* const row = line.constScanLine(y);
        uchar* const mixed = soft.scanLine(y);
        for (int x = 1; x + 1 < line.width(); ++x)
            mixed[x] = static_cast<uchar>((row[x - 1] + 2 * row[x] + row[x + 1]) / 4);
    }
    return soft;
}

QByteArray digestOf(const LineImage& line)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const QImage& image : {line.whole, line.thirds}) {
        hash.addData(QByteArray::number(image.width()) + ' ');
        for (int y = 0; y < image.height(); ++y)
            hash.addData(QByteArrayView(image.constScanLine(y), image.width()));
    }
    return hash.result();
}

/// What a corner or an icon is read as. A figure alone is more often one, in a cell or on a badge.
bool isNoise(const QList<RecognizedWord>& words)
{
    constexpr double kSpeck = 60;
    if (words.size() != 1 || words.first().text.size() > 2 || words.first().confidence >= kSpeck)
        return false;
    return !std::ranges::all_of(words.first().text,
                                [](QChar character) { return character.isDigit(); });
}

} // namespace

TextReader::TextReader(std::unique_ptr<LineRecognizer> recognizer,
                       std::chrono::milliseconds patience, int threads)
    : m_recognizer(std::move(recognizer))
    , m_patience(patience)
{
    m_pool.setMaxThreadCount(threads);
}

// More would be quicker, and take from the user's own work. Each needs engines beside.
int TextReader::usualThreads()
{
    return std::clamp(QThread::idealThreadCount(), 1, 2);
}

TextReader::~TextReader()
{
    m_pool.waitForDone();
}

TextReader::PieceReading TextReader::readingOf(const QList<RecognizedWord>& words,
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

std::vector<char> TextReader::forEach(qsizetype count, int threads,
                                      const std::function<void(qsizetype)>& work)
{
    std::atomic<qsizetype> next = 0;
    std::vector<char> isDone(static_cast<std::size_t>(count), 0);
    const auto workOn = [&] {
        auto last = processorTimeOfThread();
        for (qsizetype at = next++; at < count && !isGivenUp(); at = next++) {
            work(at);
            isDone[static_cast<std::size_t>(at)] = 1;
            const auto now = processorTimeOfThread();
            m_spent += (now - std::exchange(last, now)).count();
        }
    };
    QList<QFuture<void>> workers;
    for (qsizetype thread = 0; thread < std::min<qsizetype>(threads, count); ++thread)
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
    m_isWhole = m_isWhole && std::ranges::find(isDone, 0) == isDone.end();
    return isDone;
}

QList<TextReader::Piece> TextReader::piecesOf(const QImage& picture)
{
    const QList<QRect> lines = inReadingOrder(TextLineFinder::find(picture));
    std::vector<QList<Piece>> found(static_cast<std::size_t>(lines.size()));
    forEach(lines.size(), m_pool.maxThreadCount(), [&](qsizetype line) {
        for (const LineImage& image : imagesOfLine(picture, lines.at(line), lines))
            found[static_cast<std::size_t>(line)].append({image, nullptr, digestOf(image), line});
    });
    QList<Piece> pieces;
    for (const QList<Piece>& ofLine : found)
        pieces += ofLine;
    return pieces;
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
    forEach(unknown.size(), m_pool.maxThreadCount(), [&](qsizetype at) {
        Piece& piece = pieces[unknown.at(at)];
        auto prepared = std::make_shared<Prepared>();
        const std::optional<FixedPitch> pitch = fixedPitchOf(piece.image.whole);
        const QImage image = withPlainZeros(piece.image.whole, pitch);
        const bool isAsBefore = image.cacheKey() == piece.image.whole.cacheKey();
        prepared->cells = letterCellsOf(image, isAsBefore ? pitch : fixedPitchOf(image));
        prepared->stops = fullStopsOf(image);
        if (!isAsBefore)
            prepared->plainZeros = image;
        piece.prepared = std::move(prepared);
    });
    for (const Piece& piece : std::as_const(pieces)) {
        if (piece.prepared)
            all.insert(piece.digest, piece.prepared);
    }
    m_prepared = std::move(all);
}

TextReader::PieceReading TextReader::readPiece(const Piece& piece, const Way& way)
{
    const QImage& plainZeros = piece.prepared->plainZeros;
    QImage image = plainZeros.isNull() ? piece.image.whole : plainZeros;
    if (way.hasRoomAroundStops)
        image = withRoomAround(piece.prepared->stops, image);
    const int width = image.width();
    if (const QImage& thirds = piece.image.thirds; !way.hasRoomAroundStops && !thirds.isNull())
        image = way.isSharp ? thirds : softened(thirds);
    const QImage line = scaled(image, width, way.height);
    return readingOf(m_recognizer->read(line, way.language, way.correctsLanguage), way.language);
}

double TextReader::lengthOf(const QImage& line)
{
    return static_cast<double>(line.width()) / line.height();
}

QByteArray TextReader::keyOf(const Piece& piece, const Way& way)
{
    return way.language.toUtf8() + (way.correctsLanguage ? '+' : '-') +
           QByteArray::number(way.height) + (way.hasRoomAroundStops ? '.' : ' ') +
           (way.isSharp ? '!' : ' ') + piece.digest;
}

QList<qsizetype> TextReader::unknownOf(const QList<Piece>& pieces, const Way& way,
                                       const IsWanted& isWanted)
{
    QList<qsizetype> unknown;
    QSet<QByteArray> isBegun;
    for (qsizetype place = 0; place < pieces.size(); ++place) {
        if (!isWanted(place) || !pieces.at(place).prepared)
            continue;
        const QByteArray key = keyOf(pieces.at(place), way);
        if (m_current.contains(key) || isBegun.contains(key))
            continue;
        if (const auto known = m_known.constFind(key); known != m_known.cend()) {
            m_current.insert(key, *known);
        } else {
            isBegun.insert(key);
            unknown.append(place);
        }
    }
    std::ranges::stable_sort(unknown, std::greater(), [&](qsizetype place) {
        return lengthOf(pieces.at(place).image.whole);
    });
    return unknown;
}

QList<TextReader::PieceReading> TextReader::readAll(const QList<Piece>& pieces, const Way& way,
                                                    const IsWanted& isWanted)
{
    const QList<qsizetype> unknown = unknownOf(pieces, way, isWanted);
    std::vector<PieceReading> found(static_cast<std::size_t>(unknown.size()));
    const int threads = way.isOnOneThread ? 1 : m_pool.maxThreadCount();
    const std::vector<char> isRead = forEach(unknown.size(), threads, [&](qsizetype at) {
        found[static_cast<std::size_t>(at)] = readPiece(pieces.at(unknown.at(at)), way);
    });
    for (std::size_t at = 0; at < found.size(); ++at) {
        const Piece& piece = pieces.at(unknown.at(static_cast<qsizetype>(at)));
        if (isRead[at])
            m_current.insert(keyOf(piece, way), found[at]);
    }
    QList<PieceReading> readings(pieces.size());
    for (qsizetype place = 0; place < pieces.size(); ++place) {
        if (isWanted(place))
            readings[place] = m_current.value(keyOf(pieces.at(place), way));
    }
    return readings;
}

QStringList TextReader::linesOf(const QList<Piece>& pieces, const QList<PieceReading>& readings)
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

TextRecognizer::Reading TextReader::read(const QImage& image, const Options& options)
{
    if (image.isNull())
        return {};
    const auto rested = qScopeGuard([this] { restIfWanted(); });
    const QMutexLocker lock(&m_mutex);
    // A wish from before is not meant for this reading.
    if (m_wantsRest.exchange(false))
        forget();
    m_current.clear();
    m_spent = 0;
    m_isWhole = true;
    QList<Piece> pieces = piecesOf(image.convertToFormat(QImage::Format_RGB32));
    prepare(pieces);
    const QList<PieceReading> readings = readInAll(pieces, options);
    m_known = std::exchange(m_current, {});
    return {.lines = linesOf(pieces, readings), .isWhole = m_isWhole};
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
    m_leftOut = {};
    m_recognizer->rest();
}

bool TextReader::isGivenUp() const
{
    return m_wantsRest || std::chrono::nanoseconds(m_spent) > m_patience;
}

} // namespace mossbank
