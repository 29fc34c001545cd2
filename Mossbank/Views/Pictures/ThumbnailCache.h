// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCache>
#include <QImage>
#include <QMutex>
#include <QString>

#include <optional>

namespace mossbank {

/// The small pictures that were shown last, by the names of their files, so that scrolling back
/// opens no screenshot again. Bounded in number and in memory.
///
/// Threading: any thread.
class ThumbnailCache {
public:
    static constexpr int kCountLimit = 500;
    /// Bytes of pixels.
    static constexpr int kTotalCostLimit = 33'554'432;

    ThumbnailCache();

    std::optional<QImage> image(const QString& name) const;
    /// The pictures that were not asked for the longest go for it.
    void keep(const QImage& image, const QString& name);
    int count() const;

private:
    mutable QMutex m_mutex;
    QCache<QString, QImage> m_images;
};

} // namespace mossbank
