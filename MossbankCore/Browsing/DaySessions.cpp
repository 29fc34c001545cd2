// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Browsing/DaySessions.h"

#include "MossbankCore/Meaning/Stopwords.h"
#include "MossbankCore/Support/Characters.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

namespace mossbank {

namespace {

/// How much of a screenshot's text is read, in characters.
constexpr qsizetype kPrefix = 4000;
constexpr qsizetype kShortestWord = 3;
constexpr qsizetype kLongestWord = 24;
/// Names and headings tell more than other words.
constexpr double kCapitalWeight = 1.8;

struct Run {
    QList<Memory> memories;
    bool continues = false;
};

/// What the sampled screenshots of a run say.
struct Words {
    struct Count {
        /// Its number in the lexicon.
        std::size_t word = 0;
        qsizetype times = 0;
        /// Whether it was ever found with a capital.
        bool isCapital = false;
    };
    std::vector<Count> counts;
};

/// The words of a day, each in lower case under a number: what is written in the same way is taken
/// apart once, and is compared no more from then on. The texts outlive it.
class Lexicon {
public:
    Words wordsOf(const Run& run);
    const QString& word(std::size_t number) const { return m_words[number]; }
    std::size_t size() const { return m_words.size(); }

private:
    struct Written {
        /// Absent: it can be no keyword.
        std::optional<std::size_t> word;
        bool isCapital = false;
    };

    Written written(QStringView piece);
    Written read(QStringView piece);
    void count(const Memory& memory, Words& words);

    QHash<QStringView, Written> m_written;
    QHash<QString, std::size_t> m_numbers;
    std::vector<QString> m_words;
    /// For each word its place among those of the run that is being counted, plus one; 0 for none.
    std::vector<std::size_t> m_places;
};

/// How many runs mention a word, by its number.
using Spread = std::vector<qsizetype>;

std::vector<Run> runsOf(QList<Memory> memories, double gap, double longest)
{
    std::ranges::stable_sort(memories, {}, &Memory::timestamp);
    std::vector<Run> runs(1);
    for (Memory& memory : memories) {
        if (const QList<Memory>& last = runs.back().memories; !last.isEmpty()) {
            const double since = memory.timestamp - last.last().timestamp;
            const double span = memory.timestamp - last.first().timestamp;
            if (since > gap || span > longest)
                runs.push_back({{}, since <= gap});
        }
        runs.back().memories.append(std::move(memory));
    }
    return runs;
}

bool isNumeric(const QString& word)
{
    return std::ranges::all_of(word.toUcs4(), [](uint codePoint) {
        return QChar::isNumber(codePoint) || QChar::isMark(codePoint);
    });
}

bool canBeKeyword(const QString& word)
{
    const qsizetype length = Characters::count(word);
    return length >= kShortestWord && length <= kLongestWord &&
           !Stopwords::common().contains(word) && !isNumeric(word);
}

Lexicon::Written Lexicon::written(QStringView piece)
{
    const auto known = m_written.constFind(piece);
    return known != m_written.cend() ? *known : *m_written.insert(piece, read(piece));
}

Lexicon::Written Lexicon::read(QStringView piece)
{
    const QString word = Characters::lowercased(piece);
    if (!canBeKeyword(word))
        return {};
    auto number = m_numbers.constFind(word);
    if (number == m_numbers.constEnd()) {
        number = m_numbers.insert(word, m_words.size());
        m_words.push_back(word);
        m_places.push_back(0);
    }
    return {*number, Characters::beginsUpperCase(piece)};
}

void Lexicon::count(const Memory& memory, Words& words)
{
    for (const QStringView piece : Characters::words(Characters::prefix(memory.text, kPrefix))) {
        const Written found = written(piece);
        if (!found.word)
            continue;
        std::size_t& place = m_places[*found.word];
        if (place == 0) {
            words.counts.push_back({.word = *found.word});
            place = words.counts.size();
        }
        Words::Count& counted = words.counts[place - 1];
        ++counted.times;
        counted.isCapital |= found.isCapital;
    }
}

Words Lexicon::wordsOf(const Run& run)
{
    Words words;
    for (const Memory& memory : DaySessions::sample(run.memories, DaySessions::kSampled))
        count(memory, words);
    for (const Words::Count& counted : words.counts)
        m_places[counted.word] = 0;
    return words;
}

Spread spreadOf(const std::vector<Words>& ofRuns, std::size_t words)
{
    Spread spread(words);
    for (const Words& run : ofRuns) {
        for (const Words::Count& count : run.counts)
            ++spread[count.word];
    }
    return spread;
}

QList<SessionApp> applications(const QList<Memory>& memories)
{
    QHash<QString, SessionApp> apps;
    for (const Memory& memory : memories) {
        SessionApp& app = apps[memory.bundleID];
        app.bundleID = memory.bundleID;
        app.name = memory.appName;
        ++app.count;
    }
    QList<SessionApp> sorted = apps.values();
    std::ranges::sort(sorted, {}, [](const SessionApp& app) {
        return std::tuple(-app.count, app.name, app.bundleID);
    });
    return sorted;
}

/// An application's own name never describes what was done in it.
QSet<QString> namesOf(const QList<SessionApp>& apps)
{
    QSet<QString> names;
    for (const SessionApp& app : apps) {
        const QString name = Characters::lowercased(app.name);
        for (const QStringView word : Characters::words(name))
            names.insert(word.toString());
    }
    return names;
}

/// Frequent here and rare on the rest of the day.
QStringList distinctive(const Words& words, const Lexicon& lexicon, const Spread& spread,
                        qsizetype sessions, qsizetype wanted, const QList<SessionApp>& apps)
{
    const QSet<QString> barred = namesOf(apps);
    std::vector<std::pair<double, std::size_t>> scored;
    scored.reserve(words.counts.size());
    for (const Words::Count& count : words.counts) {
        const auto mentions = static_cast<double>(spread[count.word]);
        const double weight = count.isCapital ? kCapitalWeight : 1.0;
        const double score = std::log((static_cast<double>(sessions) + 1) / mentions) *
                             static_cast<double>(count.times) * weight;
        if (score > 0)
            scored.emplace_back(-score, count.word);
    }
    // Those barred are passed over among the best.
    const auto taken =
        std::clamp<qsizetype>(wanted + barred.size(), 0, static_cast<qsizetype>(scored.size()));
    std::ranges::partial_sort(
        scored, scored.begin() + taken, [&](const auto& one, const auto& other) {
            return one.first != other.first ? one.first < other.first
                                            : lexicon.word(one.second) < lexicon.word(other.second);
        });
    QStringList best;
    for (qsizetype at = 0; at < taken && best.size() < wanted; ++at) {
        const QString& word = lexicon.word(scored[static_cast<std::size_t>(at)].second);
        if (!barred.contains(word))
            best.append(word);
    }
    return best;
}

} // namespace

QList<Session> DaySessions::sessions(const QList<Memory>& memories, double gap, double longest,
                                     qsizetype keywords)
{
    if (memories.isEmpty())
        return {};
    std::vector<Run> runs = runsOf(memories, gap, longest);
    Lexicon lexicon;
    std::vector<Words> words;
    for (const Run& run : runs)
        words.push_back(lexicon.wordsOf(run));
    const Spread spread = spreadOf(words, lexicon.size());
    const auto count = static_cast<qsizetype>(runs.size());
    QList<Session> sessions;
    for (std::size_t at = 0; at < runs.size(); ++at) {
        Run& run = runs[at];
        const QList<SessionApp> apps = applications(run.memories);
        sessions.append({.id = run.memories.first().id,
                         .start = run.memories.first().timestamp,
                         .end = run.memories.last().timestamp,
                         .apps = apps,
                         .titles = headlines(run.memories, keywords),
                         .keywords = distinctive(words[at], lexicon, spread, count, keywords, apps),
                         .continues = run.continues,
                         .memories = std::move(run.memories)});
    }
    return sessions;
}

QList<Memory> DaySessions::sample(const QList<Memory>& items, qsizetype count)
{
    if (count < 2 || count >= items.size())
        return items;
    const double step = static_cast<double>(items.size() - 1) / static_cast<double>(count - 1);
    QList<Memory> sampled;
    for (qsizetype number = 0; number < count; ++number) {
        const double place = std::round(static_cast<double>(number) * step);
        sampled.append(items.at(static_cast<qsizetype>(place)));
    }
    return sampled;
}

QStringList DaySessions::headlines(const QList<Memory>& memories, qsizetype wanted)
{
    QHash<QString, qsizetype> counts;
    for (const Memory& memory : memories) {
        if (!memory.title.isEmpty())
            ++counts[memory.title];
    }
    QStringList titles = counts.keys();
    std::ranges::sort(titles, {},
                      [&](const QString& title) { return std::pair(-counts.value(title), title); });
    return titles.first(std::clamp<qsizetype>(wanted, 0, titles.size()));
}

} // namespace mossbank
