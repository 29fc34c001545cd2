// SPDX-License-Identifier: Apache-2.0
//
// Finding screenshots by what was typed.
#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Library/Schema.h"
#include "MossbankCore/Support/Characters.h"

#include <algorithm>
#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

bool isLetterI(QStringView character)
{
    return character == u"i" || character == u"ı";
}

/// A word as a prefix in FTS5's language. A word holds nothing that needs escaping.
QString prefixTerm(const QString& word)
{
    return u"\"%1\"*"_s.arg(word);
}

QString anyOf(const QStringList& variants)
{
    QStringList terms;
    for (const QString& variant : variants)
        terms.append(prefixTerm(variant));
    return terms.size() == 1 ? terms.first() : u'(' + terms.join(u" OR "_s) + u')';
}

} // namespace

QStringList HistoryStore::dotlessVariants(const QString& word)
{
    constexpr qsizetype kMostWidened = 3; // eight spellings
    const auto characters = Characters::split(word);
    const auto lettersI = std::count_if(characters.begin(), characters.end(), isLetterI);
    if (lettersI == 0 || lettersI > kMostWidened)
        return {word};

    QStringList variants = {QString()};
    for (const QStringView character : characters) {
        QStringList longer;
        for (const QString& variant : std::as_const(variants)) {
            if (isLetterI(character))
                longer << variant + u'i' << variant + u'ı';
            else
                longer << QString(variant).append(character);
        }
        variants = std::move(longer);
    }
    return variants;
}

std::optional<QString> HistoryStore::searchExpression(QStringView typed)
{
    QStringList terms;
    for (const QStringView word : Characters::words(typed))
        terms.append(anyOf(dotlessVariants(Characters::lowercased(word))));
    if (terms.isEmpty())
        return std::nullopt;
    return terms.join(u" AND "_s);
}

QString HistoryStore::Conditions::whereSQL() const
{
    return clauses.isEmpty() ? QString() : u" WHERE "_s + clauses.join(u" AND "_s);
}

std::optional<HistoryStore::Conditions> HistoryStore::conditions(const FetchRequest& request) const
{
    Conditions conditions;
    if (!request.query.trimmed().isEmpty()) {
        const auto expression = searchExpression(request.query);
        if (!expression)
            return std::nullopt;
        // The plus keeps SQLite from looking every match up by its rowid and sorting them all:
        // it walks memories_time instead and stops at the limit.
        conditions.clauses.append(
            u"+rowid IN (SELECT rowid FROM memory_search WHERE memory_search MATCH ?)"_s);
        conditions.values.append(*expression);
    }
    if (request.day) {
        if (const auto day = m_calendar().dateInterval(Calendar::Component::Day, *request.day)) {
            conditions.clauses.append(u"timestamp >= ? AND timestamp < ?"_s);
            conditions.values.append(decimalText(day->start.secondsSince1970));
            conditions.values.append(decimalText(day->end.secondsSince1970));
        }
    }
    if (request.app) {
        conditions.clauses.append(u"app_name = ?"_s);
        conditions.values.append(*request.app);
    }
    return conditions;
}

QString HistoryStore::titleColumns() const
{
    return m_schemaVersion >= Schema::kFirstWithTitles ? u"title, link"_s
                                                       : u"'' AS title, '' AS link"_s;
}

Memory HistoryStore::readMemory(const Statement& row)
{
    int column = 0;
    // A braced list is evaluated in the order written.
    return Memory{
        .id = row.text(column++),
        .timestamp = {row.real(column++)},
        .appName = row.text(column++),
        .bundleID = row.text(column++),
        .text = row.text(column++),
        .filename = row.text(column++),
        .bytes = row.integer(column++),
        .title = row.text(column++),
        .link = row.text(column++),
    };
}

QFuture<QList<Memory>> HistoryStore::fetch(FetchRequest request)
{
    return m_queue.run([this, request = std::move(request)] { return fetchNow(request); });
}

QList<Memory> HistoryStore::fetchNow(const FetchRequest& request)
{
    constexpr int kMostRows = 86'400;
    const auto wanted = conditions(request);
    if (!wanted)
        return {};
    Statement rows = m_db.statement(
        u"SELECT id, timestamp, app_name, bundle_id, %1, filename, bytes, %2 FROM memories%3 "
        "ORDER BY timestamp DESC, rowid DESC LIMIT %4"_s.arg(
            request.withText ? u"text"_s : u"'' AS text"_s, titleColumns(), wanted->whereSQL(),
            QString::number(std::clamp(request.limit, 1, kMostRows))));
    rows.bind(wanted->values);
    QList<Memory> memories;
    while (rows.step())
        memories.append(readMemory(rows));
    return memories;
}

} // namespace mossbank
