// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Pictures/ThumbnailCache.h"

#include <QMutexLocker>

#include <algorithm>

namespace mossbank {

ThumbnailCache::ThumbnailCache()
    : m_images(kTotalCostLimit)
{
}

std::optional<QImage> ThumbnailCache::image(const QString& name) const
{
    const QMutexLocker lock(&m_mutex);
    const QImage* const found = m_images.object(name);
    return found ? std::optional(*found) : std::nullopt;
}

void ThumbnailCache::keep(const QImage& image, const QString& name)
{
    constexpr int kBytesAPixel = 4;
    // Counted for no less, so many would be too many.
    constexpr int kLeast = kTotalCostLimit / kCountLimit;
    const int cost = image.width() * image.height() * kBytesAPixel;
    const QMutexLocker lock(&m_mutex);
    m_images.insert(name, new QImage(image), std::max(cost, kLeast));
}

int ThumbnailCache::count() const
{
    const QMutexLocker lock(&m_mutex);
    return static_cast<int>(m_images.count());
}

} // namespace mossbank
