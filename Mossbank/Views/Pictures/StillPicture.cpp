// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Pictures/StillPicture.h"

#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGTexture>

#include <utility>

namespace mossbank {

StillPicture::StillPicture(QQuickItem* parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

void StillPicture::setImage(const QImage& image)
{
    m_image = image;
    m_isNew = true;
    update();
}

QSGNode* StillPicture::updatePaintNode(QSGNode* node, UpdatePaintNodeData*)
{
    if (m_image.isNull()) {
        delete node;
        return nullptr;
    }
    auto* picture = static_cast<QSGImageNode*>(node);
    const bool isNew = std::exchange(m_isNew, false) || !picture;
    if (!picture) {
        picture = window()->createImageNode();
        picture->setOwnsTexture(true);
        picture->setFiltering(QSGTexture::Linear);
    }
    if (isNew)
        picture->setTexture(window()->createTextureFromImage(m_image));
    picture->setRect(boundingRect());
    return picture;
}

} // namespace mossbank
