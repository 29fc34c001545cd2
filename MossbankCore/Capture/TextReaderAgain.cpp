// SPDX-License-Identifier: Apache-2.0
//
// What a reader of lines does where it has seen that what it read cannot be right.
#include "MossbankCore/Capture/TextReader.h"
#include "MossbankCore/Capture/WordChoice.h"

namespace mossbank {

namespace {

/// The height in pixels at which lines are read where a dot may have been lost between two letters.
constexpr int kLargeHeight = 64;
/// Below it, it may have been.
constexpr double kNearlySure = 94;
/// Of such a line, in heights: sentences are long, and lose no word by a dot.
constexpr int kLongest = 14;
/// The height at which lines are read that have letters which cannot be what they were read as.
constexpr int kOtherHeight = 36;

bool isLong(const QImage& line)
{
    return line.width() > kLongest * line.height();
}

} // namespace

std::vector<const LetterCells*> TextReader::cellsOfFixedPitch(const QList<Piece>& pieces)
{
    std::vector<const LetterCells*> cells;
    for (const Piece& piece : pieces) {
        const bool has = piece.prepared && piece.prepared->cells;
        cells.push_back(has ? &*piece.prepared->cells : nullptr);
    }
    const std::vector<bool> are = areOfFixedPitch(cells);
    for (std::size_t place = 0; place < cells.size(); ++place)
        cells[place] = are[place] ? cells[place] : nullptr;
    return cells;
}

void TextReader::readLargerForDots(QList<PieceReading>& readings, const QList<Piece>& pieces,
                                   Way way)
{
    way.height = kLargeHeight;
    way.isSharp = true;
    const std::vector<const LetterCells*> cells = cellsOfFixedPitch(pieces);
    const auto isMeant = [&](qsizetype place) {
        const PieceReading& reading = readings.at(place);
        return reading.language == way.language && reading.confidence < kNearlySure &&
               !isLong(pieces.at(place).image.whole) && !cells[static_cast<std::size_t>(place)];
    };
    const QList<PieceReading> seconds = readAll(pieces, way, isMeant);
    for (qsizetype place = 0; place < pieces.size(); ++place) {
        if (isMeant(place))
            readings[place].words = withDots(readings.at(place).words, seconds.at(place).words);
    }
}

void TextReader::readStopsApart(QList<PieceReading>& readings, const QList<Piece>& pieces, Way way)
{
    way.hasRoomAroundStops = true;
    const std::vector<const LetterCells*> cells = cellsOfFixedPitch(pieces);
    QHash<qsizetype, qsizetype> lost;
    for (qsizetype place = 0; place < pieces.size(); ++place) {
        const Piece& piece = pieces.at(place);
        const PieceReading& reading = readings.at(place);
        if (reading.language != way.language || !piece.prepared ||
            cells[static_cast<std::size_t>(place)] || isLong(piece.image.whole))
            continue;
        const qsizetype more = piece.prepared->stops.size() - fullStopsIn(reading.words);
        if (more > 0)
            lost.insert(place, more);
    }
    const QList<PieceReading> seconds =
        readAll(pieces, way, [&](qsizetype place) { return lost.contains(place); });
    for (auto it = lost.cbegin(); it != lost.cend(); ++it) {
        QList<RecognizedWord>& words = readings[it.key()].words;
        words = withLostStops(words, seconds.at(it.key()).words, it.value());
    }
}

void TextReader::correctLetters(QList<PieceReading>& readings, const QList<Piece>& pieces, Way way)
{
    const std::vector<const LetterCells*> cells = cellsOfFixedPitch(pieces);
    const auto cellsOf = [&](qsizetype place) {
        return cells[static_cast<std::size_t>(place)];
    };
    // What each piece says, as it was chosen and in other ways.
    QList<QList<QList<RecognizedWord>>> all(pieces.size());
    const auto add = [&](const QList<PieceReading>& some) {
        for (qsizetype place = 0; place < pieces.size(); ++place) {
            if (!some.at(place).words.isEmpty())
                all[place].append(some.at(place).words);
        }
    };
    const auto correct = [&] {
        LetterShapes shapes;
        for (qsizetype place = 0; place < pieces.size(); ++place) {
            if (!cellsOf(place))
                continue;
            for (const QList<RecognizedWord>& words : all.at(place))
                shapes.learn(*cellsOf(place), PlacedLetters(*cellsOf(place), words));
        }
        QSet<qsizetype> wrong;
        for (qsizetype place = 0; place < pieces.size(); ++place) {
            if (!cellsOf(place) || all.at(place).isEmpty())
                continue;
            readings[place].words = shapes.corrected(*cellsOf(place), all.at(place));
            const PlacedLetters placed(*cellsOf(place), readings.at(place).words);
            if (!placed.isRight() && placed.isMostlyRight())
                wrong.insert(place);
        }
        return wrong;
    };
    add(readings);
    add(readAll(pieces, way, [&](qsizetype place) { return cellsOf(place) != nullptr; }));
    const QSet<qsizetype> wrong = correct();
    if (wrong.isEmpty())
        return;
    way.height = kOtherHeight;
    add(readAll(pieces, way, [&](qsizetype place) { return wrong.contains(place); }));
    correct();
}

} // namespace mossbank
