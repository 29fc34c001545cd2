// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Views/Pictures/PictureFolder.h"
#include "Mossbank/Views/Pictures/StillPicture.h"

#include <QFutureWatcher>
#include <QImage>
#include <QQuickItem>
#include <QSize>
#include <QVariantAnimation>

namespace mossbank {

/// A screenshot, as large as fits into the item. The one before stays until the next is decoded, so
/// that stepping through them does not flicker, and gives way to it in a crossfade.
///
/// Threading: the main thread; decoding is done in the background.
class ViewerPicture : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    /// The folder of the library's pictures.
    Q_PROPERTY(
        mossbank::PictureFolder folder READ folder WRITE setFolder NOTIFY folderChanged REQUIRED)
    /// Name of the file. Empty: nothing is shown.
    Q_PROPERTY(QString filename READ filename WRITE setFilename NOTIFY filenameChanged REQUIRED)
    /// Milliseconds that one picture takes to give way to another. 0: at once.
    Q_PROPERTY(int fadeDuration MEMBER m_fadeDuration)
    /// The picture could not be opened. What was shown before is gone then.
    Q_PROPERTY(bool isMissing READ isMissing NOTIFY shownChanged)
    /// Name of the file that is on show. Empty where none is.
    Q_PROPERTY(QString shown READ shown NOTIFY shownChanged)
    /// Where in the item the picture on show lies.
    Q_PROPERTY(QRectF frame READ frame NOTIFY frameChanged)

public:
    explicit ViewerPicture(QQuickItem* parent = nullptr);
    ~ViewerPicture() override;

    const PictureFolder& folder() const { return m_folder; }
    void setFolder(const PictureFolder& folder);
    const QString& filename() const { return m_filename; }
    void setFilename(const QString& filename);
    bool isMissing() const { return m_isMissing; }
    const QString& shown() const { return m_shown; }
    const QRectF& frame() const { return m_frame; }

Q_SIGNALS:
    void folderChanged();
    void filenameChanged();
    void shownChanged();
    void frameChanged();

protected:
    void componentComplete() override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;

private:
    void load();
    void take();
    void show(const QImage& image);
    /// Pixels of the screen that there are for it.
    QSize room() const;
    QRectF frameOf(const QImage& image) const;
    void reframe();

    PictureFolder m_folder;
    QString m_filename;
    QString m_shown;
    bool m_isMissing = false;
    /// The one on show, over the one that gives way to it. They are children of this.
    StillPicture* m_before;
    StillPicture* m_now;
    /// Reckoned when something changes, and not when it is asked for: a binding that asks would be
    /// bound to all that it is reckoned from, in the midst of its changing.
    QRectF m_frame;
    int m_fadeDuration = 0;
    QVariantAnimation m_fade;
    /// What the picture under way was asked for.
    QString m_loadingName;
    QSize m_loadingRoom;
    QFutureWatcher<QImage> m_loading;
};

} // namespace mossbank
