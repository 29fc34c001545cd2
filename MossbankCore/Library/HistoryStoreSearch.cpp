// SPDX-License-Identifier: Apache-2.0
//
// Finding screenshots: by what was typed, for a question, by identity, and how many a day.
#include "MossbankCore/Library/DayCounter.h"
#include "MossbankCore/Library/FoundRows.h"
#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Library/Schema.h"
#include "MossbankCore/Library/SmallerSteps.h"

#include <QRegularExpression>

#include <algorithm>
#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

QString limitSQL(int limit, int most)
{
    return u" LIMIT "_s + QString::number(std::clamp(limit, 1, most));
}

} // namespace

QString HistoryStore::Conditions::whereSQL() const
{
    return clauses.isEmpty() ? QString() : u" WHERE "_s + joined();
}

bool HistoryStore::addQuery(Conditions& conditions, const QString& query, Walk walk)
{
    // Looking up and sorting so many takes as long as a walk along the times of a large library.
    constexpr int kMany = 2'000;
    if (query.trimmed().isEmpty())
        return true;
    const auto expression = searchExpression(query);
    if (!expression)
        return false;
    // The plus keeps SQLite from looking every match up by its rowid and sorting them all: it
    // walks memories_time instead and stops at the limit.
    const bool alongTheTimes = walk == Walk::AlongTheTimes || mayMatchMany(*expression, kMany);
    conditions.clauses.append(
        (alongTheTimes ? u"+"_s : QString()) +
        u"rowid IN (SELECT rowid FROM memory_search WHERE memory_search MATCH ?)"_s);
    conditions.values.append(inSmallerSteps(m_db, *expression));
    return true;
}

bool HistoryStore::addQueryOfDay(Conditions& conditions, const QString& query,
                                 const DateInterval& day)
{
    if (query.trimmed().isEmpty())
        return true;
    const auto expression = searchExpression(query);
    if (!expression)
        return false;
    // What is matched on other days is brought together in vain. The index can be asked for a
    // stretch of rowids, and those of a day mostly are one.
    Conditions ofDay;
    addDay(ofDay, day);
    Statement ends = m_db.statement(u"SELECT count(*), min(rowid), max(rowid) FROM memories"_s +
                                    ofDay.whereSQL());
    ends.bind(ofDay.values);
    if (!ends.step() || ends.integer(0) == 0)
        return false;
    // A day is a short walk already, as the plus has it.
    conditions.clauses.append(
        u"+rowid IN (SELECT rowid FROM memory_search WHERE memory_search MATCH ? AND rowid BETWEEN "
        "%1 AND %2)"_s.arg(ends.integer(1))
            .arg(ends.integer(2)));
    conditions.values.append(inSmallerSteps(m_db, *expression));
    return true;
}

bool HistoryStore::mayMatchMany(const QString& expression, int many)
{
    const auto areMany = [this, many](const QString& asked) {
        Statement matches = m_db.statement(
            u"SELECT 1 FROM memory_search WHERE memory_search MATCH ? LIMIT 1 OFFSET %1"_s.arg(
                many - 1));
        matches.bind({asked});
        return matches.step();
    };
    // All that begins with a few letters is gathered before the first match is known, which takes
    // longest where it is much. So whole words are asked for first, and a beginning of one or two
    // letters is much in any library that is large.
    static const QRegularExpression kShortBeginning(u"\"..?\"\\*"_s);
    return kShortBeginning.match(expression).hasMatch() ||
           areMany(QString(expression).remove(u'*')) || areMany(expression);
}

std::optional<DateInterval> HistoryStore::dayOf(const std::optional<Date>& date) const
{
    return date ? m_calendar().dateInterval(Calendar::Component::Day, *date) : std::nullopt;
}

void HistoryStore::addDay(Conditions& conditions, const std::optional<DateInterval>& day)
{
    if (!day)
        return;
    conditions.clauses.append(u"timestamp >= ? AND timestamp < ?"_s);
    conditions.values.append(decimalText(day->start.secondsSince1970));
    conditions.values.append(decimalText(day->end.secondsSince1970));
}

void HistoryStore::addApp(Conditions& conditions, const std::optional<QString>& app)
{
    if (!app)
        return;
    conditions.clauses.append(u"app_name = ?"_s);
    conditions.values.append(*app);
}

bool HistoryStore::hasTitles() const
{
    return m_schemaVersion >= Schema::kFirstWithTitles;
}

QString HistoryStore::memoryColumns(const QString& text) const
{
    return u"id, timestamp, app_name, bundle_id, %1, filename, bytes, %2"_s.arg(
        text, hasTitles() ? u"title, link"_s : u"'' AS title, '' AS link"_s);
}

Memory HistoryStore::readMemory(const Statement& row, HeldRows& held)
{
    int column = 0;
    const QString id = row.text(column++);
    const Date timestamp = {row.real(column++)};
    if (const Memory* const same = held.find(id, timestamp)) {
        // Of a row that is there only the size of its picture ever changes, by its sealing.
        constexpr int kBytes = 6;
        Memory memory = *same;
        memory.bytes = row.integer(kBytes);
        return memory;
    }
    // A braced list is evaluated in the order written.
    return Memory{
        .id = id,
        .timestamp = timestamp,
        .appName = row.text(column++),
        .bundleID = row.text(column++),
        .text = row.text(column++),
        .filename = row.text(column++),
        .bytes = row.integer(column++),
        .title = row.text(column++),
        .link = row.text(column++),
    };
}

QList<Memory> HistoryStore::readMemories(const QString& sql, const QStringList& values,
                                         HeldRows held)
{
    Statement rows = m_db.statement(sql);
    rows.bind(values);
    QList<Memory> memories;
    while (rows.step())
        memories.append(readMemory(rows, held));
    return memories;
}

QFuture<QList<Memory>> HistoryStore::fetch(FetchRequest request)
{
    return search([this, request = std::move(request)] { return fetchNow(request); });
}

QList<Memory> HistoryStore::fetchNow(const FetchRequest& request)
{
    constexpr int kMostRows = 86'400;
    Conditions conditions;
    const auto day = dayOf(request.day);
    const bool canMatch = day ? addQueryOfDay(conditions, request.query, *day)
                              : addQuery(conditions, request.query, Walk::WhicheverIsQuicker);
    if (!canMatch)
        return {};
    addDay(conditions, day);
    addApp(conditions, request.app);
    return readMemories(u"SELECT %1 FROM memories%2 ORDER BY timestamp DESC, rowid DESC%3"_s.arg(
                            memoryColumns(request.withText ? u"text"_s : u"'' AS text"_s),
                            conditions.whereSQL(), limitSQL(request.limit, kMostRows)),
                        conditions.values,
                        HeldRows(request.withText ? request.held : QList<Memory>()));
}

QFuture<QList<Memory>> HistoryStore::candidates(CandidatesRequest request)
{
    return search([this, request = std::move(request)] { return candidatesNow(request); });
}

QList<Memory> HistoryStore::candidatesNow(const CandidatesRequest& request)
{
    constexpr int kMostRows = 200;
    const auto expression = questionExpression(request.question);
    if (!expression)
        return {};
    Conditions conditions = {{u"s.rowid = m.rowid"_s}, {*expression}};
    addDay(conditions, dayOf(request.day));
    addApp(conditions, request.app);
    // A word of the title tells eight times as much as one of the text, of the address four times.
    // The columns are id, application, title, address and text; older ones have no title.
    const QString weights = hasTitles() ? u"0.0, 1.0, 8.0, 4.0, 1.0"_s : u"0.0, 1.0, 1.0"_s;
    // Smaller ranks are better ones.
    return readMemories(u"SELECT %1\nFROM memories m,\n"
                        "     (SELECT rowid, bm25(memory_search, %2) AS rank\n"
                        "        FROM memory_search WHERE memory_search MATCH ?) s\n"
                        "WHERE %3\nORDER BY s.rank%4"_s.arg(memoryColumns(u"text"_s), weights,
                                                            conditions.joined(),
                                                            limitSQL(request.limit, kMostRows)),
                        conditions.values);
}

QFuture<QMap<Date, qsizetype>> HistoryStore::dayCounts(DayCountsRequest request)
{
    return search([this, request = std::move(request)] { return dayCountsNow(request); });
}

QMap<Date, qsizetype> HistoryStore::dayCountsNow(const DayCountsRequest& request)
{
    // Of fewer SQLite makes the set of rows quicker than all of them are walked by here.
    constexpr int kMany = 50'000;
    const auto expression = searchExpression(request.query);
    if (expression && !request.app && mayMatchMany(*expression, kMany))
        return dayCountsOfMany(inSmallerSteps(m_db, *expression));
    Conditions conditions;
    if (!addQuery(conditions, request.query, Walk::AlongTheTimes))
        return {};
    addApp(conditions, request.app);
    Statement rows = m_db.statement(
        u"SELECT timestamp FROM memories%1 ORDER BY timestamp"_s.arg(conditions.whereSQL()));
    rows.bind(conditions.values);
    DayCounter counter(m_calendar());
    while (rows.step())
        counter.add({rows.real(0)});
    return counter.days();
}

QMap<Date, qsizetype> HistoryStore::dayCountsOfMany(const QString& expression)
{
    // SQLite makes a tree of the rows that match, which takes most of its time where they are many.
    Statement matches = m_db.statement(
        u"SELECT rowid FROM memory_search WHERE memory_search MATCH ? ORDER BY rowid"_s);
    matches.bind({expression});
    FoundRows found;
    while (matches.step())
        found.append(matches.integer(0));
    Statement rows = m_db.statement(u"SELECT timestamp, rowid FROM memories ORDER BY timestamp"_s);
    DayCounter counter(m_calendar());
    while (rows.step()) {
        if (found.contains(rows.integer(1)))
            counter.add({rows.real(0)});
    }
    return counter.days();
}

QFuture<QList<Memory>> HistoryStore::memories(QStringList ids)
{
    return search([this, ids = std::move(ids)] { return memoriesNow(ids); });
}

QList<Memory> HistoryStore::memoriesNow(const QStringList& ids)
{
    constexpr qsizetype kMostRows = 500;
    const QStringList wanted = ids.first(std::min(ids.size(), kMostRows));
    if (wanted.isEmpty())
        return {};
    const QString marks = QStringList(wanted.size(), u"?"_s).join(u',');
    QHash<QString, Memory> found;
    for (const Memory& memory : readMemories(
             u"SELECT %1\nFROM memories WHERE id IN (%2)"_s.arg(memoryColumns(u"text"_s), marks),
             wanted))
        found.insert(memory.id, memory);
    QList<Memory> memories;
    for (const QString& id : wanted) {
        if (const auto memory = found.constFind(id); memory != found.cend())
            memories.append(*memory);
    }
    return memories;
}

} // namespace mossbank
