// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/StoredPicture.h"

#include "MossbankCore/Support/Background.h"

#include <QFileInfo>

namespace mossbank {

namespace {

/// Far more than any screenshot has. What lies in the folder may be anything.
constexpr qint64 kMostBytes = 64 * 1024 * 1024;

/// Nothing but JPEG is ever kept, and every other reader is one more that strange bytes reach.
QImage decoded(const QByteArray& bytes)
{
    // A sealed picture without a vault is an ordinary sight, and no reader is to complain of it.
    if (!bytes.startsWith("\xff\xd8"))
        return {};
    // The reader itself refuses what would take more than 128 MB once decoded.
    return QImage::fromData(bytes, "jpeg");
}

QImage loadNow(const QString& path, const std::optional<ImageVault>& vault)
{
    if (QFileInfo(path).size() > kMostBytes)
        return {};
    const auto bytes = ImageVault::picture(path, vault);
    return bytes ? decoded(*bytes) : QImage();
}

} // namespace

QFuture<QImage> StoredPicture::load(const QString& path, const std::optional<ImageVault>& vault)
{
    return atOnce([path, vault] { return loadNow(path, vault); });
}

} // namespace mossbank
