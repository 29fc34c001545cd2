// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Browsing/DaySessions.h"

#include "MossbankCore/Browsing/Vocabulary.h"
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
        quint32 word = 0;
        quint32 times = 0;
        /// Whether it was ever found with a capital.
        bool isCapital = false;
    };
    std::vector<Count> counts;
};

/// The words of a day, each in lower case under a number: what is written in the same way is taken
/// apart once, and is compared no more from then on.
class Lexicon {
public:
    Words wordsOf(const Run& run);
    QStringView word(std::size_t number) const { return m_words.word(number); }
    std::size_t size() const { return m_words.size(); }

private:
    /// What is written in one way.
    struct Written {
        /// Absent: it can be no keyword.
        std::optional<quint32> word;
        bool isCapital = false;
        /// How often the run that is being counted has it.
        quint32 times = 0;
    };

    Written read(QStringView piece);
    void count(const Memory& memory);

    Vocabulary m_pieces;
    std::vector<Written> m_written;
    /// Those that the run has.
    std::vector<quint32> m_found;
    Vocabulary m_words;
    /// For each word its place among those of the run, plus one; 0 for none.
    std::vector<quint32> m_places;
};

/// How rare a word is among the runs, by its number.
using Rarity = std::vector<double>;

/// The screenshots, oldest first. The list outlives them.
std::vector<const Memory*> oldestFirst(const QList<Memory>& memories)
{
    std::vector<const Memory*> sorted;
    sorted.reserve(static_cast<std::size_t>(memories.size()));
    for (const Memory& memory : memories)
        sorted.push_back(&memory);
    std::ranges::stable_sort(sorted, {}, &Memory::timestamp);
    return sorted;
}

std::vector<Run> runsOf(const QList<Memory>& memories, double gap, double longest)
{
    std::vector<Run> runs(1);
    for (const Memory* const memory : oldestFirst(memories)) {
        if (const QList<Memory>& last = runs.back().memories; !last.isEmpty()) {
            const double since = memory->timestamp - last.last().timestamp;
            const double span = memory->timestamp - last.first().timestamp;
            if (since > gap || span > longest)
                runs.push_back({{}, since <= gap});
        }
        runs.back().memories.append(*memory);
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

Lexicon::Written Lexicon::read(QStringView piece)
{
    const QString word = Characters::lowercased(piece);
    if (!canBeKeyword(word))
        return {};
    const quint32 number = m_words.numberOf(word);
    m_places.resize(m_words.size());
    return {.word = number, .isCapital = Characters::beginsUpperCase(piece)};
}

void Lexicon::count(const Memory& memory)
{
    const auto pieces = Characters::words(Characters::prefix(memory.text, kPrefix));
    const std::vector<quint32>& numbers = m_pieces.numbersOf(pieces);
    for (std::size_t at = 0; at < pieces.size(); ++at) {
        const quint32 number = numbers[at];
        if (number == m_written.size())
            m_written.push_back(read(pieces[at]));
        if (m_written[number].times++ == 0)
            m_found.push_back(number);
    }
}

Words Lexicon::wordsOf(const Run& run)
{
    for (const Memory& memory : DaySessions::sample(run.memories, DaySessions::kSampled))
        count(memory);
    Words words;
    words.counts.reserve(m_found.size());
    for (const quint32 number : m_found) {
        Written& written = m_written[number];
        const quint32 times = std::exchange(written.times, 0);
        if (!written.word)
            continue;
        quint32& place = m_places[*written.word];
        if (place == 0) {
            words.counts.push_back({.word = *written.word});
            place = static_cast<quint32>(words.counts.size());
        }
        Words::Count& counted = words.counts[place - 1];
        counted.times += times;
        counted.isCapital |= written.isCapital;
    }
    m_found.clear();
    for (const Words::Count& counted : words.counts)
        m_places[counted.word] = 0;
    return words;
}

Rarity rarityOf(const std::vector<Words>& ofRuns, std::size_t words)
{
    std::vector<qsizetype> mentions(words);
    for (const Words& run : ofRuns) {
        for (const Words::Count& count : run.counts)
            ++mentions[count.word];
    }
    const auto runs = static_cast<double>(ofRuns.size());
    Rarity rarity;
    rarity.reserve(words);
    for (const qsizetype runsWithIt : mentions)
        rarity.push_back(std::log((runs + 1) / static_cast<double>(runsWithIt)));
    return rarity;
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
QStringList distinctive(const Words& words, const Lexicon& lexicon, const Rarity& rarity,
                        qsizetype wanted, const QList<SessionApp>& apps)
{
    const QSet<QString> barred = namesOf(apps);
    std::vector<std::pair<double, std::size_t>> scored;
    scored.reserve(words.counts.size());
    for (const Words::Count& count : words.counts) {
        const double weight = count.isCapital ? kCapitalWeight : 1.0;
        const double score = rarity[count.word] * static_cast<double>(count.times) * weight;
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
        const QString word = lexicon.word(scored[static_cast<std::size_t>(at)].second).toString();
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
    const Rarity rarity = rarityOf(words, lexicon.size());
    QList<Session> sessions;
    for (std::size_t at = 0; at < runs.size(); ++at) {
        Run& run = runs[at];
        const QList<SessionApp> apps = applications(run.memories);
        sessions.append({.id = run.memories.first().id,
                         .start = run.memories.first().timestamp,
                         .end = run.memories.last().timestamp,
                         .apps = apps,
                         .titles = headlines(run.memories, keywords),
                         .keywords = distinctive(words[at], lexicon, rarity, keywords, apps),
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
    std::vector<std::pair<qsizetype, QString>> sorted;
    sorted.reserve(static_cast<std::size_t>(counts.size()));
    for (auto title = counts.constBegin(); title != counts.constEnd(); ++title)
        sorted.emplace_back(-title.value(), title.key());
    const auto taken = std::clamp<qsizetype>(wanted, 0, counts.size());
    std::ranges::partial_sort(sorted, sorted.begin() + taken);
    QStringList titles;
    for (auto title = sorted.begin(); title != sorted.begin() + taken; ++title)
        titles.append(std::move(title->second));
    return titles;
}

} // namespace mossbank
