// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/StoredPicture.h"

#include "MossbankCore/Support/Background.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImageReader>

namespace mossbank {

namespace {

/// Far more than any screenshot has. What lies in the folder may be anything.
constexpr qint64 kMostBytes = 64 * 1024 * 1024;

/// Nothing but JPEG is ever kept, and every other reader is one more that strange bytes reach.
QImage decoded(QByteArray bytes, QSize most)
{
    // A sealed picture without a vault is an ordinary sight, and no reader is to complain of it.
    if (!bytes.startsWith("\xff\xd8"))
        return {};
    QBuffer buffer(&bytes);
    // The reader itself refuses what would take more than 128 MB once decoded.
    QImageReader reader(&buffer, "jpeg");
    const QSize size = reader.size();
    // It decodes no more than is wanted then.
    if (!most.isEmpty() && (size.width() > most.width() || size.height() > most.height()))
        reader.setScaledSize(size.scaled(most, Qt::KeepAspectRatio).expandedTo({1, 1}));
    return reader.read();
}

QImage loadNow(const QString& path, const std::optional<ImageVault>& vault, QSize most,
               const IsUnwanted& isUnwanted)
{
    if (QFileInfo(path).size() > kMostBytes)
        return {};
    const auto bytes = ImageVault::picture(path, vault);
    return bytes && !isUnwanted() ? decoded(*bytes, most) : QImage();
}

} // namespace

QFuture<QImage> StoredPicture::load(const QString& path, const std::optional<ImageVault>& vault,
                                    QSize most)
{
    return atOnce([path, vault, most](const IsUnwanted& isUnwanted) {
        return loadNow(path, vault, most, isUnwanted);
    });
}

} // namespace mossbank
