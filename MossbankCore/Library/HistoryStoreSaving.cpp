// SPDX-License-Identifier: Apache-2.0
//
// How a screenshot goes into the library. It lives in two places, a file and a row, and no
// transaction spans both. So: a marker first, then the picture, then the row, then the marker goes
// again. After a crash the marker is there exactly when the picture may be without its row.
#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Library/StoreError.h"
#include "MossbankCore/Support/Files.h"

#include <QFileInfo>
#include <QScopeGuard>

#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// Lets a failure pass: what is being reported already matters more.
template <typename Action>
void quietly(Action&& action)
{
    try {
        action();
    } catch (const FileError&) {
    }
}

} // namespace

QFuture<void> HistoryStore::setVault(std::optional<ImageVault> vault)
{
    return m_queue.run([this, vault = std::move(vault)] { m_vault = vault; });
}

QFuture<void> HistoryStore::save(Memory memory, QByteArray jpeg)
{
    return m_queue.run(
        [this, memory = std::move(memory), jpeg = std::move(jpeg)] { saveNow(memory, jpeg); });
}

void HistoryStore::saveNow(const Memory& memory, const QByteArray& jpeg)
{
    if (!isValidFilename(memory.filename))
        throw StoreError(u"Invalid screenshot filename."_s);
    requireWritable();
    const QString picture = images() + u'/' + memory.filename;
    // A link that leads nowhere takes the name, too.
    if (const QFileInfo earlier(picture); earlier.exists() || earlier.isSymLink())
        throw StoreError(u"A screenshot with that filename already exists."_s);

    // Somebody may have removed the folder by hand.
    Files::createFolder(pending());
    const QString marker = pending() + u'/' + memory.filename;
    Files::createEmptyFile(marker);
    const auto markerGoesLast = qScopeGuard([&] { quietly([&] { Files::removeFile(marker); }); });
    // Or a power cut could leave the picture with neither its marker nor its row, and nothing would
    // ever take it away. One more wait for the disk, so only where the picture's does not do.
    if (!Files::syncsInOrder(pending()))
        Files::syncFolder(pending());

    // The marker holds no bytes and the picture is sealed before it is written, so a crash never
    // leaves a plain picture behind.
    const QByteArray bytes = m_vault ? m_vault->sealed(jpeg) : jpeg;
    // The name was free, so whatever has it when this fails is this picture.
    auto pictureGoes = qScopeGuard([&] {
        quietly([&] {
            Files::removeFile(picture);
            // Before its marker goes, for the same reason.
            Files::syncFolder(images());
        });
    });
    Files::writeAtomically(picture, bytes);
    insertRow(memory, bytes.size());
    pictureGoes.dismiss();
}

void HistoryStore::insertRow(const Memory& memory, qsizetype bytesOnDisk)
{
    // The insert trigger adds to the index and the summary within this same statement.
    Statement insert = m_db.statement(u"INSERT INTO memories (id, timestamp, app_name, bundle_id, "
                                      u"text, filename, bytes, title, link)\n"
                                      "VALUES (?,?,?,?,?,?,?,?,?)"_s);
    insert.bind({memory.id, decimalText(memory.timestamp.secondsSince1970), memory.appName,
                 memory.bundleID, memory.text, memory.filename, QString::number(bytesOnDisk),
                 memory.title, memory.link});
    insert.step();
}

} // namespace mossbank
