// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QSizeF>
#include <QtQmlIntegration>

#include <optional>

namespace mossbank {

/// How large a picture is shown in a window that it may be larger than: as large as fits, or at a
/// scale that the user has chosen.
///
/// Threading: the main thread.
class ZoomScale : public QObject {
    Q_OBJECT
    QML_ELEMENT
    /// In pixels of the screen, which are what `scale` counts.
    Q_PROPERTY(QSizeF picture MEMBER m_picture NOTIFY changed)
    Q_PROPERTY(QSizeF viewport MEMBER m_viewport NOTIFY changed)
    Q_PROPERTY(qreal scale READ scale NOTIFY changed)
    Q_PROPERTY(bool isFitting READ isFitting NOTIFY changed)
    /// "80 %".
    Q_PROPERTY(QString label READ label NOTIFY changed)

public:
    static constexpr qreal kStep = 1.25;
    static constexpr qreal kMost = 3.0;
    static constexpr qreal kLeast = 0.1;

    using QObject::QObject;

    /// The largest scale, at most 1, at which the whole picture fits. 1 while either has no size.
    qreal fit() const;
    qreal scale() const { return m_zoom.value_or(fit()); }
    bool isFitting() const { return !m_zoom; }
    QString label() const;

    Q_INVOKABLE void showWhole();
    Q_INVOKABLE void showOwnSize();
    Q_INVOKABLE void zoomIn();
    Q_INVOKABLE void zoomOut();

Q_SIGNALS:
    void changed();

private:
    void setZoom(std::optional<qreal> zoom);

    QSizeF m_picture;
    QSizeF m_viewport;
    /// Absent: whatever fits.
    std::optional<qreal> m_zoom;
};

} // namespace mossbank
