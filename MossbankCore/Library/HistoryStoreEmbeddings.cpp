// SPDX-License-Identifier: Apache-2.0
//
// What models made of the screenshots. The store only keeps it, a row for each screenshot and
// model.
#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Library/StoreError.h"

#include <algorithm>
#include <utility>

namespace mossbank {

using namespace Qt::StringLiterals;

QFuture<QList<HistoryStore::Unread>> HistoryStore::withoutEmbedding(QString model, int limit)
{
    return m_queue.run(
        [this, model = std::move(model), limit] { return withoutEmbeddingNow(model, limit); });
}

QList<HistoryStore::Unread> HistoryStore::withoutEmbeddingNow(const QString& model, int limit)
{
    constexpr int kMostRows = 5000;
    // The newest first: search by meaning is of use long before a large library is read.
    Statement rows = m_db.statement(
        u"SELECT m.id, m.text, %1 FROM memories m\n"
        "WHERE NOT EXISTS (SELECT 1 FROM embeddings e WHERE e.id = m.id AND e.model = ?)\n"
        "ORDER BY m.timestamp DESC LIMIT %2"_s.arg(
            hasTitles() ? u"m.title"_s : u"'' AS title"_s,
            QString::number(std::clamp(limit, 1, kMostRows))));
    rows.bind({model});
    QList<Unread> unread;
    while (rows.step())
        unread.append({rows.text(0), rows.text(1), rows.text(2)});
    return unread;
}

QFuture<HistoryStore::EmbeddingProgress> HistoryStore::embeddingProgress(QString model)
{
    return m_queue.run([this, model = std::move(model)] {
        Statement counts =
            m_db.statement(u"SELECT (SELECT count(*) FROM embeddings WHERE model = ?), "
                           "(SELECT count(*) FROM memories)"_s);
        counts.bind({model});
        if (!counts.step())
            throw StoreError(m_db.errorMessage());
        return EmbeddingProgress{counts.integer(0), counts.integer(1)};
    });
}

QFuture<void> HistoryStore::saveEmbeddings(QList<Embedding> embeddings, QString model)
{
    return m_queue.run([this, embeddings = std::move(embeddings), model = std::move(model)] {
        saveEmbeddingsNow(embeddings, model);
    });
}

void HistoryStore::saveEmbeddingsNow(const QList<Embedding>& embeddings, const QString& model)
{
    if (embeddings.isEmpty())
        return;
    requireWritable();
    m_db.transaction([&] {
        // A screenshot may have been deleted while the model was reading it.
        Statement insert = m_db.statement(u"INSERT OR REPLACE INTO embeddings (id, model, vector)\n"
                                          "SELECT ?1, ?2, ?3 WHERE EXISTS "
                                          "(SELECT 1 FROM memories WHERE id = ?1)"_s);
        constexpr int kVector = 3;
        for (const Embedding& embedding : embeddings) {
            insert.reset();
            insert.bind({embedding.id, model});
            insert.bindBlob(kVector, embedding.vector.data());
            insert.step();
        }
    });
}

QFuture<std::optional<QString>> HistoryStore::widestEmbeddingModel()
{
    return m_queue.run([this]() -> std::optional<QString> {
        Statement widest = m_db.statement(u"SELECT model, count(*) AS n FROM embeddings "
                                          "GROUP BY model ORDER BY n DESC LIMIT 1"_s);
        if (!widest.step() || widest.text(0).isEmpty())
            return std::nullopt;
        return widest.text(0);
    });
}

QFuture<QList<HistoryStore::Embedding>> HistoryStore::embeddings(QString model)
{
    return m_queue.run([this, model = std::move(model)] { return embeddingsNow(model); });
}

QList<HistoryStore::Embedding> HistoryStore::embeddingsNow(const QString& model)
{
    Statement rows = m_db.statement(u"SELECT id, vector FROM embeddings WHERE model = ?"_s);
    rows.bind({model});
    QList<Embedding> embeddings;
    while (rows.step()) {
        if (const auto vector = Vector::fromData(rows.blob(1)))
            embeddings.append({rows.text(0), *vector});
    }
    return embeddings;
}

} // namespace mossbank
