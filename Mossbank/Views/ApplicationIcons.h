// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QQuickImageProvider>
#include <QString>
#include <QUrl>

namespace mossbank {

/// The icons of applications, for the windows.
///
/// Threading: the main thread.
class ApplicationIcons final : public QQuickImageProvider {
public:
    /// By this an engine knows it.
    static constexpr char16_t kID[] = u"application";

    ApplicationIcons();

    /// Where the engine finds the icon of this name, or the picture at this path. Empty when there
    /// is no such icon.
    static QUrl url(const QString& icon);

    /// Null when there is no such icon.
    QPixmap requestPixmap(const QString& id, QSize* size, const QSize& requestedSize) override;
};

} // namespace mossbank
