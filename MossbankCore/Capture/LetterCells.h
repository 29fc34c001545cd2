// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Capture/FixedPitch.h"
#include "MossbankCore/Ports/LineRecognizer.h"

#include <QList>
#include <QString>

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

class QImage;

namespace mossbank {

/// What a letter in its cell looks like, whatever its size: rows of ink, 0 to 255.
using LetterShape = std::array<std::uint8_t, 8 * 24>;

/// The letters of a line that are all equally wide, each in a cell of its own.
struct LetterCells {
    struct Letter {
        /// How far it reaches above the line that letters stand on and below it, in cells.
        double top = 0;
        double bottom = 0;
        LetterShape shape = {};
        /// Whether it has three strokes side by side, and reaches above small letters and below the
        /// line: recognisers know an "@" in small type badly, and it is told by this.
        bool isAtSign = false;
    };
    /// Letters without an empty cell between.
    struct Run {
        std::size_t first = 0;
        qsizetype length = 0;
    };

    /// Of a cell, in pixels.
    double width = 0;
    /// Without the empty cells.
    std::vector<Letter> letters;
    std::vector<Run> runs;
};

/// The cells of a grey image of one line, dark on white, of that pitch. Absent where letters are
/// plainly of different widths.
///
/// Threading: any thread.
std::optional<LetterCells> letterCellsOf(const QImage& line,
                                         const std::optional<FixedPitch>& pitch);

/// For each line of a picture whether its letters are all equally wide. A few letters of a line may
/// be so by chance, and digits often are; but then no other lines have cells of that width.
std::vector<bool> areOfFixedPitch(const std::vector<const LetterCells*>& lines);

/// What was read of the letters of such a line, each in its cell, and which of them cannot be.
///
/// It cannot be seen from the cells what the letters are, but much of what they are not: how many
/// there are, where the spaces between words are, which reach above the small letters and which
/// below the line.
///
/// Threading: a value; any thread.
class PlacedLetters {
public:
    /// Keeps a reference to `cells`.
    PlacedLetters(const LetterCells& cells, const QList<RecognizedWord>& words);

    /// What is read of a run, and how surely.
    struct Part {
        QString text;
        double confidence = 0;
        /// For each letter whether it is not as it should be; none where there are more or fewer
        /// than there are cells.
        std::vector<bool> isWrong;

        bool isRight() const;
    };

    /// One a run; empty where not all that was read has a place.
    const std::vector<Part>& parts() const { return m_parts; }
    /// Whether everything is as it should be.
    bool isRight() const;
    /// Whether so much is that the line was cut as it should be.
    bool isMostlyRight() const;

    /// Whether `letter` can be what stands in the cell.
    bool isPossible(QChar letter, std::size_t cell) const;
    /// Whether a run can be that.
    bool isRight(std::size_t run, const QString& text) const;
    /// Whether what stands there reaches above small letters and at least a little below what
    /// letters stand on, as signs do that are a small letter and a stroke around or through it.
    bool mayBeSign(std::size_t cell) const;
    /// Whether all of what stands there is below what letters stand on.
    bool isUnderscore(std::size_t cell) const;

private:
    void place(const QList<RecognizedWord>& words);
    void measure();
    void check();
    bool reachesAbove(std::size_t cell, double least) const;
    bool reachesBelow(std::size_t cell, double least) const;

    const LetterCells* m_cells;
    std::vector<Part> m_parts;
    /// How far small letters reach, in cells; absent where there are too few of them to tell.
    std::optional<double> m_top;
    double m_bottom = 0;
};

/// What the letters of a picture look like, and what they are: of a font, a letter looks the same
/// wherever it stands.
///
/// Threading: a value; any thread.
class LetterShapes {
public:
    /// Takes the letters of what is read right.
    void learn(const LetterCells& cells, const PlacedLetters& placed);

    /// The words of a line by the first of `readings`, of which there is one at least. What cannot
    /// be right is replaced by what another says there, or by what looks like it elsewhere.
    QList<RecognizedWord> corrected(const LetterCells& cells,
                                    const QList<QList<RecognizedWord>>& readings) const;

private:
    /// A letter, and how unlike the cell its most alike shape is, 0 to 1.
    struct Guess {
        QChar letter;
        double distance = 1;
    };

    /// How unlike a cell a letter looks at least, 0 to 1. Absent where it was nowhere read for
    /// sure.
    std::optional<double> distance(QChar letter, const LetterShape& shape) const;
    /// What looks most like a cell; a null letter where nothing does. `isSure`: nor where another
    /// letter looks nearly as much so.
    Guess guess(const LetterCells& cells, const PlacedLetters& placed, std::size_t cell,
                bool isSure) const;
    /// A part that is not right, as far as it can be mended.
    PlacedLetters::Part mended(const LetterCells& cells, const PlacedLetters& placed,
                               std::size_t run, PlacedLetters::Part part) const;
    /// `text` with as many letters as the run has cells: without those that have none, and with
    /// those that it lacks.
    std::optional<QString> respelled(const LetterCells& cells, const PlacedLetters& placed,
                                     const LetterCells::Run& run, const QString& text) const;

    std::map<QChar, std::vector<LetterShape>> m_shapes;
};

} // namespace mossbank
