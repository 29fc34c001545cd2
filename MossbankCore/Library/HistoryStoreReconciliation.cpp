// SPDX-License-Identifier: Apache-2.0
//
// Settling what saves that were cut short have left. The markers tell which those are, so the price
// depends on their number and not on the library's size.
#include "MossbankCore/Library/HistoryStore.h"

#include <QFile>

#include <utility>

namespace mossbank {

using namespace Qt::StringLiterals;

QFuture<qsizetype> HistoryStore::reconcile(double grace, Date now)
{
    return m_queue.run([this, grace, now] { return reconcileNow(grace, now); });
}

qsizetype HistoryStore::reconcileNow(double grace, Date now)
{
    requireWritable();
    m_db.execute(u"DELETE FROM embeddings WHERE id NOT IN (SELECT id FROM memories);"_s);
    const Date cutoff = now - grace;
    std::optional<QByteArrayList> inImages;
    qsizetype removed = 0;
    for (const QByteArray& name : Files::filesIn(pending())) {
        const auto began = Files::modified(pending(), name);
        // A save may still be under way, in this process or in another.
        if (!began || *began >= cutoff)
            continue;
        // With its row the save got through, and only the marker is left over.
        if (referencedFilenames(u"filename = ?"_s, {QFile::decodeName(name)}).isEmpty()) {
            if (!inImages)
                inImages = Files::filesIn(images());
            const qsizetype gone = removePicture(name, *inImages);
            // Before its marker goes: a picture that came back without one would stay for ever.
            if (gone > 0)
                Files::syncFolder(images());
            removed += gone;
        }
        Files::removeFile(pending(), name);
    }
    return removed;
}

qsizetype HistoryStore::removePicture(const QByteArray& filename,
                                      const QByteArrayList& inImages) const
{
    qsizetype removed = 0;
    for (const QByteArray& name : inImages) {
        // A write that was cut short has left its part under a name made from this one.
        if (name != filename && !name.startsWith(filename + '.'))
            continue;
        Files::removeFile(images(), name);
        ++removed;
    }
    return removed;
}

} // namespace mossbank
