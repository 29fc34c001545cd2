// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/ScreenFingerprint.h"

#include <QImage>

namespace mossbank {

std::optional<Fingerprint> ScreenFingerprint::make(const QImage& image, int size)
{
    if (size < 1 || image.isNull())
        return std::nullopt;
    // Qt scales and grays some formats in other ways; all are to give the same cells.
    const QImage cells = image.convertToFormat(QImage::Format_RGB32)
                             .scaled(size, size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                             .convertToFormat(QImage::Format_Grayscale8);
    if (cells.isNull())
        return std::nullopt;
    Fingerprint fingerprint;
    fingerprint.reserve(static_cast<std::size_t>(size) * static_cast<std::size_t>(size));
    for (int row = 0; row < size; ++row)
        fingerprint.insert(fingerprint.end(), cells.constScanLine(row),
                           cells.constScanLine(row) + size);
    return fingerprint;
}

bool ScreenFingerprint::areComparable(const std::optional<Fingerprint>& from,
                                      const std::optional<Fingerprint>& to)
{
    return from && to && from->size() == to->size() && !from->empty();
}

std::int64_t ScreenFingerprint::moved(const std::optional<Fingerprint>& from,
                                      const std::optional<Fingerprint>& to, std::uint8_t tolerance)
{
    if (!areComparable(from, to))
        return kNotComparable;
    std::int64_t count = 0;
    for (std::size_t cell = 0; cell < to->size(); ++cell)
        count += hasMoved((*from)[cell], (*to)[cell], tolerance) ? 1 : 0;
    return count;
}

bool ScreenFingerprint::changed(const std::optional<Fingerprint>& from,
                                const std::optional<Fingerprint>& to, std::uint8_t tolerance)
{
    return moved(from, to, tolerance) > 0;
}

} // namespace mossbank
