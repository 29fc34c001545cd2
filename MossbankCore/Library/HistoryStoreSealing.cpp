// SPDX-License-Identifier: Apache-2.0
//
// Sealing pictures that were saved while there was no key.
#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Library/ImageVault.h"
#include "MossbankCore/Library/Schema.h"

#include <QFile>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// The whole of a picture that lies as plain JPEG. Absent for one that is sealed, at the price of
/// a few bytes, and for one that cannot be read.
std::optional<QByteArray> plainPicture(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) ||
        ImageVault::isSealed(file.read(ImageVault::marker.size())) || !file.seek(0))
        return std::nullopt;
    const QByteArray bytes = file.readAll();
    return file.error() == QFile::NoError ? std::optional(bytes) : std::nullopt;
}

} // namespace

QFuture<qsizetype> HistoryStore::sealExistingPictures(qsizetype limit)
{
    return m_queue.run([this, limit] { return sealNow(limit); });
}

qsizetype HistoryStore::sealNow(qsizetype limit)
{
    if (!m_vault)
        return 0;
    requireWritable();
    qsizetype count = 0;
    for (const QByteArray& onDisk : Files::filesIn(images())) {
        if (count >= limit)
            break;
        const QString name = QFile::decodeName(onDisk);
        if (isLeftover(name)) {
            Files::removeFile(images() + u'/' + name);
            continue;
        }
        const QString path = images() + u'/' + name;
        const auto plain = plainPicture(path);
        if (!plain)
            continue;
        const QByteArray sealed = m_vault->sealed(*plain);
        // At every moment the file is a whole picture, plain or sealed.
        Files::writeAtomically(path, sealed);
        addBytes(name, sealed.size() - plain->size(), sealed.size());
        ++count;
    }
    return count;
}

bool HistoryStore::isLeftover(const QString& name)
{
    const auto picture = Files::beingWritten(name);
    return picture && referencedFilenames(u"filename = ?"_s, {name}).isEmpty() &&
           !QFile::exists(pending() + u'/' + *picture);
}

void HistoryStore::addBytes(const QString& filename, qint64 growth, qint64 bytes)
{
    m_db.transaction([&] {
        Statement summary =
            m_db.statement(u"UPDATE memory_slots SET bytes = bytes + ?\n WHERE (slot, app_name) IN "
                           "(SELECT %1, app_name FROM memories WHERE filename = ?)"_s.arg(
                               Schema::slot(u"timestamp"_s)));
        summary.bind({QString::number(growth), filename});
        summary.step();
        Statement row = m_db.statement(u"UPDATE memories SET bytes = ? WHERE filename = ?"_s);
        row.bind({QString::number(bytes), filename});
        row.step();
    });
}

} // namespace mossbank
