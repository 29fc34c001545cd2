// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Pictures/ViewerPicture.h"

#include "Mossbank/Model/StoredPicture.h"
#include "MossbankCore/Library/Memory.h"

#include <QQuickWindow>

#include <cmath>
#include <utility>

namespace mossbank {

ViewerPicture::ViewerPicture(QQuickItem* parent)
    : QQuickItem(parent)
    , m_before(new StillPicture(this))
    , m_now(new StillPicture(this))
{
    m_fade.setStartValue(0.0);
    m_fade.setEndValue(1.0);
    connect(&m_fade, &QVariantAnimation::valueChanged, m_now,
            [this](const QVariant& share) { m_now->setOpacity(share.toReal()); });
    connect(&m_fade, &QAbstractAnimation::finished, m_before, [this] { m_before->setImage({}); });
    connect(&m_loading, &QFutureWatcherBase::finished, this, &ViewerPicture::take);
}

ViewerPicture::~ViewerPicture()
{
    m_loading.cancel();
}

void ViewerPicture::setFolder(const PictureFolder& folder)
{
    m_folder = folder;
    load();
    Q_EMIT folderChanged();
}

void ViewerPicture::setFilename(const QString& filename)
{
    if (std::exchange(m_filename, filename) == filename)
        return;
    load();
    Q_EMIT filenameChanged();
}

QSize ViewerPicture::room() const
{
    const qreal pixels = window() ? window()->effectiveDevicePixelRatio() : 1;
    return (size() * pixels).toSize();
}

void ViewerPicture::load()
{
    if (!isComponentComplete())
        return;
    if (m_filename.isEmpty()) {
        m_loading.setFuture({});
        m_loadingName.clear();
        show({});
        return;
    }
    if (room().isEmpty() || (m_loadingName == m_filename && m_loadingRoom == room()))
        return;
    m_loading.cancel();
    m_loadingName = m_filename;
    m_loadingRoom = room();
    m_loading.setFuture(isValidFilename(m_filename)
                            ? StoredPicture::load(m_folder.file(m_filename), m_folder.vault, room())
                            : QtFuture::makeReadyFuture(QImage()));
}

void ViewerPicture::take()
{
    const QFuture<QImage> loaded = m_loading.future();
    if (!loaded.isCanceled() && loaded.resultCount() > 0)
        show(loaded.result());
}

void ViewerPicture::show(const QImage& image)
{
    const bool isOther = m_shown != m_loadingName;
    m_isMissing = image.isNull() && !m_loadingName.isEmpty();
    const bool fades = isOther && !image.isNull() && !m_now->image().isNull() && m_fadeDuration > 0;
    m_shown = m_isMissing ? QString() : m_loadingName;
    m_fade.stop();
    m_before->setImage(fades ? m_now->image() : QImage());
    m_before->setPosition(m_now->position());
    m_before->setSize(m_now->size());
    m_now->setImage(image);
    m_now->setOpacity(fades ? 0 : 1);
    if (fades) {
        m_fade.setDuration(m_fadeDuration);
        m_fade.start();
    }
    reframe();
    Q_EMIT shownChanged();
}

void ViewerPicture::reframe()
{
    m_frame = frameOf(m_now->image());
    m_now->setPosition(m_frame.topLeft());
    m_now->setSize(m_frame.size());
    Q_EMIT frameChanged();
}

QRectF ViewerPicture::frameOf(const QImage& image) const
{
    if (image.isNull() || size().isEmpty())
        return {};
    const qreal pixels = window() ? window()->effectiveDevicePixelRatio() : 1;
    QSizeF shown = QSizeF(image.size()) / pixels;
    if (shown.width() > width() || shown.height() > height())
        shown.scale(size(), Qt::KeepAspectRatio);
    const QPointF corner((width() - shown.width()) / 2, (height() - shown.height()) / 2);
    // Between two pixels of the screen it would be blurred.
    return {std::round(corner.x() * pixels) / pixels, std::round(corner.y() * pixels) / pixels,
            shown.width(), shown.height()};
}

void ViewerPicture::componentComplete()
{
    QQuickItem::componentComplete();
    load();
}

void ViewerPicture::geometryChange(const QRectF& now, const QRectF& before)
{
    QQuickItem::geometryChange(now, before);
    load();
    reframe();
}

void ViewerPicture::itemChange(ItemChange change, const ItemChangeData& data)
{
    QQuickItem::itemChange(change, data);
    if (change == ItemSceneChange || change == ItemDevicePixelRatioHasChanged)
        load();
}

} // namespace mossbank
