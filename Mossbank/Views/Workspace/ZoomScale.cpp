// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Workspace/ZoomScale.h"

#include "Mossbank/Model/Texts.h"

#include <algorithm>
#include <cmath>

namespace mossbank {

qreal ZoomScale::fit() const
{
    if (m_picture.isEmpty() || m_viewport.isEmpty())
        return 1;
    return std::min(
        {m_viewport.width() / m_picture.width(), m_viewport.height() / m_picture.height(), 1.0});
}

QString ZoomScale::label() const
{
    constexpr qreal kPercent = 100;
    return localized("%1 %").arg(std::lround(scale() * kPercent));
}

void ZoomScale::showWhole()
{
    setZoom(std::nullopt);
}

void ZoomScale::showOwnSize()
{
    setZoom(1);
}

void ZoomScale::zoomIn()
{
    setZoom(std::min(scale() * kStep, kMost));
}

void ZoomScale::zoomOut()
{
    setZoom(std::max(scale() / kStep, kLeast));
}

void ZoomScale::setZoom(std::optional<qreal> zoom)
{
    m_zoom = zoom;
    Q_EMIT changed();
}

} // namespace mossbank
