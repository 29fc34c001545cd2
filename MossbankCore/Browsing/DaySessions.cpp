// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Browsing/DaySessions.h"

#include "MossbankCore/Meaning/Stopwords.h"
#include "MossbankCore/Support/Characters.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <cmath>
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
    /// How often each was found.
    QHash<QString, qsizetype> counts;
    /// Those that were found with a capital.
    QSet<QString> capitals;
};

/// How many runs mention a word.
using Spread = QHash<QString, qsizetype>;

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

void readWords(const Memory& memory, Words& words)
{
    for (const QStringView piece : Characters::words(Characters::prefix(memory.text, kPrefix))) {
        const QString word = Characters::lowercased(piece);
        if (!canBeKeyword(word))
            continue;
        ++words.counts[word];
        if (Characters::beginsUpperCase(piece))
            words.capitals.insert(word);
    }
}

Words wordsOf(const Run& run)
{
    Words words;
    for (const Memory& memory : DaySessions::sample(run.memories, DaySessions::kSampled))
        readWords(memory, words);
    return words;
}

Spread spreadOf(const std::vector<Words>& ofRuns)
{
    Spread spread;
    for (const Words& words : ofRuns) {
        for (auto word = words.counts.keyBegin(); word != words.counts.keyEnd(); ++word)
            ++spread[*word];
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
QStringList distinctive(const Words& words, const Spread& spread, qsizetype sessions,
                        qsizetype wanted, const QList<SessionApp>& apps)
{
    const QSet<QString> barred = namesOf(apps);
    std::vector<std::pair<double, QString>> scored;
    for (auto word = words.counts.constBegin(); word != words.counts.constEnd(); ++word) {
        if (barred.contains(word.key()))
            continue;
        const auto mentions = static_cast<double>(spread.value(word.key(), 1));
        const double weight = words.capitals.contains(word.key()) ? kCapitalWeight : 1.0;
        const double score = std::log((static_cast<double>(sessions) + 1) / mentions) *
                             static_cast<double>(*word) * weight;
        if (score > 0)
            scored.emplace_back(-score, word.key());
    }
    std::ranges::sort(scored);
    QStringList best;
    for (const auto& [score, word] : scored) {
        if (best.size() >= wanted)
            break;
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
    std::vector<Words> words;
    for (const Run& run : runs)
        words.push_back(wordsOf(run));
    const Spread spread = spreadOf(words);
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
                         .keywords = distinctive(words[at], spread, count, keywords, apps),
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
