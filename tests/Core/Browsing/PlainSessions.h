// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Browsing/DaySessions.h"
#include "MossbankCore/Meaning/Stopwords.h"
#include "MossbankCore/Support/Characters.h"

#include <QMap>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <tuple>

namespace mossbank {

/// Stretches of work as whoever is in no hurry makes them: every word is taken apart wherever it
/// stands, counted by its letters, and all that could be wanted is sorted.
class PlainSessions {
public:
    static QList<Session> sessions(QList<Memory> memories, double gap, double longest,
                                   qsizetype wanted)
    {
        std::ranges::stable_sort(memories, {}, &Memory::timestamp);
        QList<Session> sessions;
        for (const Memory& memory : memories) {
            const Session* const last = sessions.isEmpty() ? nullptr : &sessions.constLast();
            const bool isAway = last && memory.timestamp - last->end > gap;
            const bool isLong = last && memory.timestamp - last->start > longest;
            if (!last || isAway || isLong) {
                Session next;
                next.id = memory.id;
                next.start = memory.timestamp;
                next.continues = last && !isAway;
                sessions.append(next);
            }
            sessions.last().end = memory.timestamp;
            sessions.last().memories.append(memory);
        }
        name(sessions, wanted);
        return sessions;
    }

private:
    struct Count {
        int times = 0;
        bool isCapital = false;
    };
    using Counts = QMap<QString, Count>;

    static void name(QList<Session>& sessions, qsizetype wanted)
    {
        QList<Counts> counts;
        QMap<QString, int> mentions;
        for (const Session& session : sessions) {
            counts.append(countsOf(session));
            for (const QString& word : counts.constLast().keys())
                ++mentions[word];
        }
        for (qsizetype at = 0; at < sessions.size(); ++at) {
            Session& session = sessions[at];
            session.apps = apps(session);
            session.titles =
                titles(session).first(std::clamp<qsizetype>(wanted, 0, titles(session).size()));
            const QStringList words =
                ranked(session, counts[at], mentions, static_cast<double>(sessions.size()));
            session.keywords = words.first(std::clamp<qsizetype>(wanted, 0, words.size()));
        }
    }

    static Counts countsOf(const Session& session)
    {
        Counts counts;
        for (const Memory& memory : DaySessions::sample(session.memories, DaySessions::kSampled)) {
            const QString read = QString(memory.text);
            const auto characters = Characters::split(read);
            QString beginning;
            for (std::size_t at = 0; at < std::min<std::size_t>(characters.size(), 4000); ++at)
                beginning += characters[at];
            for (const QStringView piece : Characters::words(beginning)) {
                const QString word = Characters::lowercased(piece);
                const auto length = static_cast<qsizetype>(Characters::split(word).size());
                if (length < 3 || length > 24 || Stopwords::common().contains(word) ||
                    isNumeric(word))
                    continue;
                ++counts[word].times;
                counts[word].isCapital |= Characters::beginsUpperCase(piece);
            }
        }
        return counts;
    }

    static bool isNumeric(const QString& word)
    {
        return std::ranges::none_of(word.toUcs4(), [](uint codePoint) {
            return !QChar::isNumber(codePoint) && !QChar::isMark(codePoint);
        });
    }

    static QList<SessionApp> apps(const Session& session)
    {
        QMap<QString, SessionApp> apps;
        for (const Memory& memory : session.memories) {
            const qsizetype before = apps.value(memory.bundleID).count;
            apps[memory.bundleID] = {memory.appName, memory.bundleID, before + 1};
        }
        QList<SessionApp> sorted = apps.values();
        std::ranges::sort(sorted, {}, [](const SessionApp& app) {
            return std::tuple(-app.count, app.name, app.bundleID);
        });
        return sorted;
    }

    static QStringList titles(const Session& session)
    {
        QMap<QString, int> counts;
        for (const Memory& memory : session.memories)
            ++counts[memory.title];
        counts.remove({});
        QStringList sorted = counts.keys();
        std::ranges::stable_sort(sorted, std::greater(),
                                 [&](const QString& title) { return counts.value(title); });
        return sorted;
    }

    static QStringList ranked(const Session& session, const Counts& counts,
                              const QMap<QString, int>& mentions, double sessions)
    {
        QSet<QString> barred;
        for (const SessionApp& app : session.apps) {
            const QString name = Characters::lowercased(app.name);
            for (const QStringView word : Characters::words(name))
                barred.insert(word.toString());
        }
        QMap<QString, double> scores;
        for (auto count = counts.cbegin(); count != counts.cend(); ++count) {
            const double rarity = std::log((sessions + 1) / mentions.value(count.key()));
            if (!barred.contains(count.key()))
                scores[count.key()] = rarity * count->times * (count->isCapital ? 1.8 : 1.0);
        }
        QStringList words = scores.keys();
        std::ranges::stable_sort(words, std::greater(),
                                 [&](const QString& word) { return scores.value(word); });
        return words;
    }
};

} // namespace mossbank
