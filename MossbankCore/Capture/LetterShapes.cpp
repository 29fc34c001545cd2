// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/LetterCells.h"

#include <algorithm>
#include <cmath>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// The sum of the squares of how far two shapes are apart. Of so few numbers it never leaves an
/// int.
int between(const LetterShape& one, const LetterShape& other)
{
    int sum = 0;
    for (std::size_t at = 0; at < one.size(); ++at) {
        const int apart = one[at] - other[at];
        sum += apart * apart;
    }
    return sum;
}

} // namespace

void LetterShapes::learn(const LetterCells& cells, const PlacedLetters& placed)
{
    constexpr double kSure = 80;
    constexpr std::size_t kMost = 60; // of one letter
    for (std::size_t run = 0; run < placed.parts().size(); ++run) {
        const PlacedLetters::Part& part = placed.parts()[run];
        if (!part.isRight() || part.confidence < kSure)
            continue;
        for (qsizetype place = 0; place < part.text.size(); ++place) {
            std::vector<LetterShape>& shapes = m_shapes[part.text.at(place)];
            if (shapes.size() < kMost)
                shapes.push_back(
                    cells.letters[cells.runs[run].first + static_cast<std::size_t>(place)].shape);
        }
    }
}

std::optional<double> LetterShapes::distance(QChar letter, const LetterShape& shape) const
{
    const auto known = m_shapes.find(letter);
    if (known == m_shapes.end())
        return {};
    constexpr int kMost = 255;
    int least = kMost * kMost * static_cast<int>(shape.size());
    for (const LetterShape& one : known->second)
        least = std::min(least, between(one, shape));
    return std::sqrt(static_cast<double>(least) / static_cast<double>(shape.size())) / kMost;
}

LetterShapes::Guess LetterShapes::guess(const LetterCells& cells, const PlacedLetters& placed,
                                        std::size_t cell, bool isSure) const
{
    constexpr double kLike = 0.14;
    constexpr double kNearer = 0.85;
    if (cells.letters[cell].isAtSign)
        return {u'@', 0};
    if (placed.isUnderscore(cell))
        return {u'_', 0};
    Guess best;
    double second = 1;
    for (const auto& [letter, shapes] : m_shapes) {
        if (!placed.isPossible(letter, cell))
            continue;
        const double here = distance(letter, cells.letters[cell].shape).value_or(1);
        second = std::min(second, std::max(here, best.distance));
        if (here < best.distance)
            best = {letter, here};
    }
    if (best.distance > kLike || (isSure && best.distance > kNearer * second))
        best.letter = QChar();
    return best;
}

std::optional<QString> LetterShapes::respelled(const LetterCells& cells,
                                               const PlacedLetters& placed,
                                               const LetterCells::Run& run,
                                               const QString& text) const
{
    constexpr double kNever = 1e6;
    constexpr double kDropped = 0.12;
    constexpr double kSignDropped = 0.1;
    constexpr double kAdded = 0.1;
    constexpr double kUnknown = 0.12;
    constexpr double kImpossible = 0.5;
    enum class Step { Keep, Drop, Add };
    struct Way {
        double cost = kNever;
        Step step = Step::Keep;
        QChar added;
    };
    const qsizetype width = text.size() + 1;
    std::vector<Way> ways(static_cast<std::size_t>((run.length + 1) * width));
    const auto at = [&](qsizetype cell, qsizetype letter) -> Way& {
        return ways[static_cast<std::size_t>(cell * width + letter)];
    };
    for (qsizetype cell = run.length; cell >= 0; --cell) {
        const bool isEnd = cell == run.length;
        const std::size_t place = run.first + static_cast<std::size_t>(cell);
        const Guess seen = isEnd ? Guess() : guess(cells, placed, place, false);
        for (qsizetype letter = text.size(); letter >= 0; --letter) {
            Way& way = at(cell, letter);
            const bool isDone = letter == text.size();
            if (isEnd && isDone)
                way.cost = 0;
            if (!isEnd && !isDone) {
                const QChar read = text.at(letter);
                const double unlike =
                    placed.isPossible(read, place)
                        ? distance(read, cells.letters[place].shape).value_or(kUnknown)
                        : kImpossible;
                way = {unlike + at(cell + 1, letter + 1).cost, Step::Keep, {}};
            }
            if (!isDone) {
                // What is made up is a sign rather than a letter.
                const bool isLetter = text.at(letter).isLetterOrNumber();
                const double dropped =
                    (isLetter ? kDropped : kSignDropped) + at(cell, letter + 1).cost;
                if (dropped < way.cost)
                    way = {dropped, Step::Drop, {}};
            }
            if (!seen.letter.isNull() &&
                kAdded + seen.distance + at(cell + 1, letter).cost < way.cost)
                way = {kAdded + seen.distance + at(cell + 1, letter).cost, Step::Add, seen.letter};
        }
    }
    if (at(0, 0).cost >= kNever)
        return {};
    QString spelled;
    qsizetype letter = 0;
    while (spelled.size() < run.length || letter < text.size()) {
        const Way& way = at(spelled.size(), letter);
        if (way.step != Step::Drop)
            spelled += way.step == Step::Add ? way.added : text.at(letter);
        letter += way.step != Step::Add;
    }
    return spelled;
}

PlacedLetters::Part LetterShapes::mended(const LetterCells& cells, const PlacedLetters& placed,
                                         std::size_t run, PlacedLetters::Part part) const
{
    const LetterCells::Run& where = cells.runs[run];
    if (part.text.size() != where.length) {
        QString whole = part.text;
        whole.replace(u'—', u"--"_s); // one sign for two that touch
        part.text = respelled(cells, placed, where, whole).value_or(part.text);
    }
    for (qsizetype place = 0; place < part.text.size() && part.text.size() == where.length;
         ++place) {
        const std::size_t cell = where.first + static_cast<std::size_t>(place);
        if (placed.isPossible(part.text.at(place), cell))
            continue;
        const Guess seen = guess(cells, placed, cell, true);
        const bool isSign = placed.mayBeSign(cell);
        if (!seen.letter.isNull())
            part.text[place] = seen.letter;
        else if (isSign && part.text.at(place) == u'a')
            part.text[place] = u'@';
        else if (isSign && part.text.at(place) == u's')
            part.text[place] = u'$';
    }
    return part;
}

QList<RecognizedWord> LetterShapes::corrected(const LetterCells& cells,
                                              const QList<QList<RecognizedWord>>& readings) const
{
    std::vector<PlacedLetters> all;
    for (const QList<RecognizedWord>& words : readings) {
        if (all.empty() || !words.isEmpty())
            all.emplace_back(cells, words);
    }
    const PlacedLetters& placed = all.front();
    if (!placed.isMostlyRight())
        return readings.first();
    std::erase_if(all, [](const PlacedLetters& one) { return one.parts().empty(); });
    QList<RecognizedWord> result;
    for (std::size_t run = 0; run < cells.runs.size(); ++run) {
        const auto isRight = [&](const PlacedLetters::Part& part) {
            return placed.isRight(run, part.text);
        };
        std::vector<PlacedLetters::Part> parts;
        for (const PlacedLetters& one : all)
            parts.push_back(one.parts()[run]);
        auto best = std::ranges::find_if(parts, isRight);
        if (best == parts.end()) {
            for (PlacedLetters::Part& part : parts)
                part = mended(cells, placed, run, part);
            best = std::ranges::find_if(parts, isRight);
        }
        const PlacedLetters::Part& part = best == parts.end() ? parts.front() : *best;
        if (!part.text.isEmpty())
            result.append({part.text, part.confidence});
    }
    return result;
}

} // namespace mossbank
