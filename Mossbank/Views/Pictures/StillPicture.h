// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QQuickItem>

namespace mossbank {

/// A picture that fills its item.
///
/// Threading: the main thread.
class StillPicture : public QQuickItem {
    Q_OBJECT

public:
    explicit StillPicture(QQuickItem* parent = nullptr);

    const QImage& image() const { return m_image; }
    /// A null one: nothing is shown.
    void setImage(const QImage& image);

protected:
    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData* data) override;

private:
    QImage m_image;
    /// Not handed to the scene yet.
    bool m_isNew = false;
};

} // namespace mossbank
