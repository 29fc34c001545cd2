// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Views/Pictures/PictureFolder.h"
#include "Mossbank/Views/Pictures/ThumbnailCache.h"

#include <QQuickAsyncImageProvider>
#include <QUrl>

#include <memory>

namespace mossbank {

/// The screenshots of a library for the windows: whole, or small enough for a strip of them. They
/// are opened and decoded in the background; one that scrolls away before is given up.
///
/// Threading: any thread.
class PictureProvider final : public QQuickAsyncImageProvider {
public:
    /// By these an engine knows the two.
    static constexpr char16_t kThumbnails[] = u"thumbnail";
    static constexpr char16_t kScreenshots[] = u"screenshot";
    /// Pixels on the longer side of a small one.
    static constexpr int kThumbnailSize = 220;

    /// Where the engine finds the picture in the file of this name. Empty for no name.
    static QUrl thumbnail(const QString& filename);
    static QUrl screenshot(const QString& filename);

    /// Whole pictures, at most as large as is asked for. They are kept nowhere.
    explicit PictureProvider(PictureFolder folder);
    /// Small ones. The cache may serve several windows.
    PictureProvider(PictureFolder folder, std::shared_ptr<ThumbnailCache> thumbnails);

    QQuickImageResponse* requestImageResponse(const QString& id,
                                              const QSize& requestedSize) override;

private:
    PictureFolder m_folder;
    /// Null for whole pictures.
    std::shared_ptr<ThumbnailCache> m_thumbnails;
};

} // namespace mossbank
