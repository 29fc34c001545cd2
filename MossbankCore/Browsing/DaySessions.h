// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Library/Memory.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace mossbank {

/// An application within a stretch of work.
struct SessionApp {
    /// As its last screenshot there has it.
    QString name;
    QString bundleID;
    /// How many screenshots it has there.
    qsizetype count = 0;

    const QString& id() const { return bundleID; }

    friend bool operator==(const SessionApp&, const SessionApp&) = default;
};

/// A stretch of work.
struct Session {
    /// That of its first screenshot.
    QString id;
    Date start;
    Date end;
    /// All of them, those with the most screenshots first.
    QList<SessionApp> apps;
    /// The most frequent titles of windows.
    QStringList titles;
    /// What sets it apart from the rest of the day, in lower case.
    QStringList keywords;
    /// It goes on from the one before it without a pause: only its length parted them.
    bool continues = false;
    /// All screenshots of it, oldest first.
    QList<Memory> memories;

    qsizetype count() const { return memories.size(); }
    /// In seconds.
    double duration() const { return end - start; }

    friend bool operator==(const Session&, const Session&) = default;
};

/// Cuts a list of screenshots into stretches of work: where the user went away, and where one
/// would be too long. Names each by its applications, its titles and a few words.
///
/// Threading: any thread.
class DaySessions {
public:
    DaySessions() = delete;

    /// Of how many screenshots of a stretch the text is read.
    static constexpr qsizetype kSampled = 12;

    /// The stretches, oldest first. `gap`: the longest pause within one; `longest`: how long one
    /// may be; both in seconds. `keywords`: how many words and titles each has at most.
    static QList<Session> sessions(const QList<Memory>& memories, double gap, double longest,
                                   qsizetype keywords);

    /// So many of the items, evenly spread, the first and the last among them.
    static QList<Memory> sample(const QList<Memory>& items, qsizetype count);

    /// The titles that most of the screenshots have, those with the most first.
    static QStringList headlines(const QList<Memory>& memories, qsizetype wanted);
};

} // namespace mossbank
