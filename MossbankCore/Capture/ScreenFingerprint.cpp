// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/ScreenFingerprint.h"

#include "MossbankCore/Capture/CellComparison.h"
#include "MossbankCore/Capture/GrayCells.h"

#include <QImage>

namespace mossbank {

std::optional<Fingerprint> ScreenFingerprint::make(const QImage& image, int size)
{
    if (size < 1 || image.isNull())
        return std::nullopt;
    switch (image.format()) {
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:
        return grayCells(image, size);
    default:
        return grayCells(image.convertToFormat(QImage::Format_RGB32), size);
    }
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
    const std::uint8_t* const before = from->data();
    const std::uint8_t* const after = to->data();
    return countCells(0, to->size(), [=](std::size_t cell) {
        return cellMoved(before[cell], after[cell], tolerance);
    });
}

bool ScreenFingerprint::changed(const std::optional<Fingerprint>& from,
                                const std::optional<Fingerprint>& to, std::uint8_t tolerance)
{
    return moved(from, to, tolerance) > 0;
}

} // namespace mossbank
