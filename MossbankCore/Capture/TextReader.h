// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Capture/FullStops.h"
#include "MossbankCore/Capture/LetterCells.h"
#include "MossbankCore/Capture/LineImages.h"
#include "MossbankCore/Ports/LineRecognizer.h"
#include "MossbankCore/Ports/TextRecognizer.h"

#include <QHash>
#include <QImage>
#include <QMutex>
#include <QSet>
#include <QThreadPool>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace mossbank {

/// Reads the words on a picture of a screen, line by line.
///
/// A recogniser made for printed pages fails where dark and light panels lie side by side, on
/// coloured buttons, on small grey text. So the lines are found first, and each is handed over
/// dark on white and of the size that recognisers like best.
///
/// What was read of a line is remembered for as long as the next picture has the same line to the
/// pixel: of a screen of which little has changed only that little is read again. Every picture
/// says what a reader says that has seen no other. A line that has not changed may say something
/// else than before all the same, where a line beside it now shows that another language is there,
/// or what a letter looks like.
///
/// Languages to be expected are tried wherever the first is in doubt, those that are only
/// installed on a few lines; where one is found, also on the lines beside. When more than four are
/// only installed, none of them is tried.
///
/// Threading: any thread; one picture at a time, the rest wait.
class TextReader final : public TextRecognizer {
public:
    /// `patience`: the processor time that the lines of a picture may take, of all threads that
    /// read them and of nothing else in the program. What looks like text all over could take
    /// minutes; on a busy machine any picture may, and is read all the same. `threads`: how many
    /// lines are read at once.
    explicit TextReader(std::unique_ptr<LineRecognizer> recognizer,
                        std::chrono::milliseconds patience = std::chrono::seconds(30),
                        int threads = usualThreads());
    ~TextReader() override;

    /// Two where there are as many processors.
    static int usualThreads();

    /// A line of text each, its words with one space between. Of a picture that takes longer than
    /// it may, what has been read by then, which is not the whole: read once more, it goes on from
    /// there. A language that was not asked for and cannot be read in is left out until the next
    /// rest.
    Reading read(const QImage& image, const Options& options) override;
    /// Returns at once. A reading under way ends soon, with what it has, which is not the whole
    /// then and is forgotten.
    void rest() override;

private:
    /// What is made of a piece once, however often it is read, and kept for the next picture. Not
    /// its images: they are the larger part, and the next picture has them again.
    struct Prepared {
        /// Null where it has none of the marked zeros that would be read as another letter.
        QImage plainZeros;
        /// Where its letters are all equally wide.
        std::optional<LetterCells> cells;
        /// To be seen on it, whatever is read.
        QList<FullStop> stops;
    };
    /// Part of a line, to be read in one go.
    struct Piece {
        LineImage image;
        std::shared_ptr<const Prepared> prepared;
        /// Tells it from any that looks otherwise.
        QByteArray digest;
        qsizetype line = 0;
    };
    /// How a piece is read.
    struct Way {
        QString language;
        bool correctsLanguage = false;
        /// Of the line, in pixels.
        int height = 0;
        bool hasRoomAroundStops = false;
        /// Letters that are drawn in thirds of a pixel are not softened.
        bool isSharp = false;
        /// Takes longer, and one engine of the language less.
        bool isOnOneThread = false;
    };
    /// What a piece says, read in one way.
    struct PieceReading {
        QList<RecognizedWord> words;
        /// That of most of the words.
        QString language;
        /// The mean of the words', by their lengths. 0 without words.
        double confidence = 0;
    };
    using Readings = QHash<QByteArray, PieceReading>;
    using IsWanted = std::function<bool(qsizetype)>;
    using AllPrepared = QHash<QByteArray, std::shared_ptr<const Prepared>>;

    QList<Piece> piecesOf(const QImage& picture);
    void prepare(QList<Piece>& pieces);
    /// Calls `work` for each number below `count`, on so many threads, until the picture is given
    /// up. Returns which numbers it was called for, and notes when that were not all.
    std::vector<char> forEach(qsizetype count, int threads,
                              const std::function<void(qsizetype)>& work);
    /// What is not known yet of a picture as it is read in a way, each once. The widest come first,
    /// so that at the end no thread waits long for another.
    QList<qsizetype> unknownOf(const QList<Piece>& pieces, const Way& way,
                               const IsWanted& isWanted);
    /// Reads all of a picture, and what stays in doubt at once also in another language: no thread
    /// waits for others in between. A long line that is read alone is not waited for either, to see
    /// whether it stays in doubt. Returns what reading in the other language failed with, if it
    /// did. No other language where `other` is empty.
    std::exception_ptr readAhead(const QList<Piece>& pieces, const Way& way, const QString& other);
    /// What each piece says, as far as `isWanted` asks for it.
    QList<PieceReading> readAll(const QList<Piece>& pieces, const Way& way,
                                const IsWanted& isWanted);
    static PieceReading readingOf(const QList<RecognizedWord>& words, const QString& language);
    PieceReading readPiece(const Piece& piece, const Way& way);
    QList<PieceReading> readInAll(const QList<Piece>& pieces, const Options& options);
    /// Takes from another language what it reads better. `most`: of how many pieces it is looked
    /// for.
    void improve(QList<PieceReading>& readings, const QList<Piece>& pieces, Way way,
                 qsizetype most);
    /// Reads what is unsure in that language in another way, and takes what is surer.
    void readUnsureAgain(QList<PieceReading>& readings, const QList<Piece>& pieces, const Way& way);
    /// Null for each piece whose letters are of different widths.
    static std::vector<const LetterCells*> cellsOfFixedPitch(const QList<Piece>& pieces);
    /// Takes from a larger reading the dots that are lost.
    void readLargerForDots(QList<PieceReading>& readings, const QList<Piece>& pieces, Way way);
    /// Reads with room around them where there are more full stops than were read, and takes them.
    void readStopsApart(QList<PieceReading>& readings, const QList<Piece>& pieces, Way way);
    /// Puts right what cannot be as it was read, by how the letters look. `way`: in which all have
    /// been read first.
    void correctLetters(QList<PieceReading>& readings, const QList<Piece>& pieces, Way way);
    /// Of a piece in that way; for all that look the same.
    static QByteArray keyOf(const Piece& piece, const Way& way);
    /// In heights of itself, which are all made one.
    static double lengthOf(const QImage& line);
    /// At most so many of the pieces whose reading is less sure, and what looks the same as they.
    static QSet<qsizetype> longestBelow(double confidence, const QList<PieceReading>& readings,
                                        const QList<Piece>& pieces, qsizetype most);
    /// With all places of pieces that look the same as one of `places`: what is done with one is
    /// done with each.
    static QSet<qsizetype> withAlike(QSet<qsizetype> places, const QList<Piece>& pieces);
    static QList<qsizetype> placesBelow(double confidence, const QList<PieceReading>& readings);
    static QStringList linesOf(const QList<Piece>& pieces, const QList<PieceReading>& readings);
    /// Whether the picture is read no further.
    bool isGivenUp() const;
    void restIfWanted();
    void forget();

    std::unique_ptr<LineRecognizer> m_recognizer;
    std::chrono::milliseconds m_patience;
    QMutex m_mutex;
    /// The processor time that the lines of the reading under way have taken, in nanoseconds.
    std::atomic<std::int64_t> m_spent = 0;
    /// Whether all of the picture has been read so far.
    bool m_isWhole = true;
    /// Threads of its own: a reading waits for them, and may itself run on the global pool.
    QThreadPool m_pool;
    /// Of the picture read last, and of the one that is being read.
    Readings m_known;
    Readings m_current;
    AllPrepared m_prepared;
    /// Languages that cannot be read in, though their models are installed.
    QSet<QString> m_leftOut;
    std::atomic<bool> m_wantsRest = false;
};

} // namespace mossbank
