// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/LetterCells.h"

#include <algorithm>
#include <cmath>

namespace mossbank {

namespace {

/// Letters by how far they reach.
constexpr QStringView kSmall = u"acemnorsuz";
constexpr QStringView kLow = u"gpqy";
constexpr QStringView kAmid = u"-–—=~";
/// Not those whose arms reach into the next cells, and are cut off.
constexpr QStringView kHigh = u"bdfhiklABCDEFGHIKLMNOPRSTUZ";

/// What reaches further than this above small letters, or below the line, is none; in cells.
constexpr double kFar = 0.18;
/// What reaches less far is no letter that should. Capitals may be hardly higher than small
/// letters.
constexpr double kNear = 0.07;
constexpr double kDeep = 0.16; // what letters that reach below the line do at least

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

} // namespace

bool PlacedLetters::Part::isRight() const
{
    return !isWrong.empty() && std::ranges::none_of(isWrong, [](bool is) { return is; });
}

bool PlacedLetters::isRight() const
{
    return !m_parts.empty() && std::ranges::all_of(m_parts, &Part::isRight);
}

bool PlacedLetters::isMostlyRight() const
{
    const auto right = std::ranges::count_if(m_parts, &Part::isRight);
    return !m_parts.empty() && 2 * right >= std::ssize(m_parts);
}

PlacedLetters::PlacedLetters(const LetterCells& cells, const QList<RecognizedWord>& words)
    : m_cells(&cells)
{
    place(words);
    measure();
    check();
}

void PlacedLetters::place(const QList<RecognizedWord>& words)
{
    constexpr int kNever = 1'000'000;
    constexpr std::size_t kMostJoined = 4;
    const auto wordCount = static_cast<std::size_t>(words.size());
    const std::vector<LetterCells::Run>& runs = m_cells->runs;
    // The least that is wrong with the words from one place on and the runs from one place on, and
    // how many words go with how many runs there.
    struct Step {
        int cost = kNever;
        std::size_t words = 0;
        std::size_t runs = 0;
    };
    std::vector<Step> steps((wordCount + 1) * (runs.size() + 1));
    const auto at = [&](std::size_t word, std::size_t run) -> Step& {
        return steps[word * (runs.size() + 1) + run];
    };
    at(wordCount, runs.size()).cost = 0;
    for (std::size_t word = wordCount + 1; word-- > 0;) {
        for (std::size_t run = runs.size(); run-- > 0;) {
            Step& best = at(word, run);
            const auto consider = [&](qsizetype wrong, std::size_t byWords, std::size_t byRuns) {
                const int cost = static_cast<int>(wrong) + at(word + byWords, run + byRuns).cost;
                if (cost < best.cost)
                    best = {cost, byWords, byRuns};
            };
            qsizetype length = 0;
            for (std::size_t count = 1; count <= kMostJoined && word + count <= wordCount;
                 ++count) {
                length += words.at(static_cast<qsizetype>(word + count) - 1).text.size();
                const qsizetype off = std::abs(length - runs[run].length);
                consider(off == 0 ? static_cast<qsizetype>(count) - 1
                                  : off + static_cast<qsizetype>(2 * count) - 1,
                         count, 1);
            }
            consider(runs[run].length + 1, 0, 1);
        }
    }
    if (at(0, 0).cost >= kNever)
        return;
    std::size_t word = 0;
    for (std::size_t run = 0; run < runs.size(); ++run) {
        const std::size_t count = at(word, run).words;
        Part whole{.text = {}, .confidence = 100, .isWrong = {}};
        for (std::size_t end = word + count; word < end; ++word) {
            const RecognizedWord& one = words.at(static_cast<qsizetype>(word));
            whole.text += one.text;
            whole.confidence = std::min(whole.confidence, one.confidence);
        }
        m_parts.push_back(whole);
    }
}

void PlacedLetters::measure()
{
    constexpr std::size_t kFewest = 4;
    std::vector<double> tops;
    std::vector<double> bottoms;
    for (std::size_t run = 0; run < m_parts.size(); ++run) {
        const QString& text = m_parts[run].text;
        for (qsizetype place = 0; place < text.size() && text.size() == m_cells->runs[run].length;
             ++place) {
            if (!kSmall.contains(text.at(place)))
                continue;
            const std::size_t cell = m_cells->runs[run].first + static_cast<std::size_t>(place);
            tops.push_back(m_cells->letters[cell].top);
            bottoms.push_back(m_cells->letters[cell].bottom);
        }
    }
    if (tops.size() < kFewest)
        return;
    m_top = median(tops);
    m_bottom = median(bottoms);
}

bool PlacedLetters::isRight(std::size_t run, const QString& text) const
{
    if (text.size() != m_cells->runs[run].length)
        return false;
    std::size_t cell = m_cells->runs[run].first;
    return std::ranges::all_of(text, [&](QChar letter) { return isPossible(letter, cell++); });
}

bool PlacedLetters::reachesAbove(std::size_t cell, double least) const
{
    return m_top && m_cells->letters[cell].top > *m_top + least;
}

bool PlacedLetters::reachesBelow(std::size_t cell, double least) const
{
    return m_top && m_cells->letters[cell].bottom > m_bottom + least;
}

bool PlacedLetters::mayBeSign(std::size_t cell) const
{
    return reachesAbove(cell, kNear) && reachesBelow(cell, kNear);
}

bool PlacedLetters::isUnderscore(std::size_t cell) const
{
    return m_top && m_cells->letters[cell].top < 0;
}

bool PlacedLetters::isPossible(QChar letter, std::size_t cell) const
{
    constexpr QStringView kAlike = u"@$Øø";
    if (m_cells->letters[cell].isAtSign && !kAlike.contains(letter))
        return false;
    if (!m_top)
        return true;
    if (isUnderscore(cell))
        return letter == u'_';
    const bool isLow = reachesBelow(cell, kDeep);
    const bool isHigh = reachesAbove(cell, kNear);
    const bool isTooLow = reachesBelow(cell, kFar);
    const bool isTooHigh = reachesAbove(cell, kFar);
    const QString parts = QString(letter).normalized(QString::NormalizationForm_D);
    if (parts.size() > 1) {
        constexpr QStringView kBelow = u"\u0327\u0328";
        const bool shouldBeLow = kLow.contains(parts.front()) || kBelow.contains(parts.at(1));
        return (kBelow.contains(parts.at(1)) || isHigh) && (shouldBeLow ? isLow : !isTooLow);
    }
    if (kSmall.contains(letter))
        return !isTooHigh && !isTooLow;
    if (kLow.contains(letter))
        return !isTooHigh && isLow;
    if (kHigh.contains(letter) || letter.isDigit())
        return isHigh && !isTooLow;
    if (kAmid.contains(letter))
        return !isTooHigh && !reachesBelow(cell, -kNear);
    return true;
}

void PlacedLetters::check()
{
    for (std::size_t run = 0; run < m_parts.size(); ++run) {
        Part& part = m_parts[run];
        if (part.text.size() != m_cells->runs[run].length)
            continue;
        for (qsizetype place = 0; place < part.text.size(); ++place) {
            const std::size_t cell = m_cells->runs[run].first + static_cast<std::size_t>(place);
            part.isWrong.push_back(!isPossible(part.text.at(place), cell));
        }
    }
}

} // namespace mossbank
