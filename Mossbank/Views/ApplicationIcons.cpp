// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/ApplicationIcons.h"

#include <QDir>
#include <QFileInfo>
#include <QIcon>
#include <QImageReader>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

constexpr QSize kUsual(48, 48);

/// Read at the size that is asked for, whatever size the picture has.
QPixmap read(const QString& path, QSize size)
{
    QImageReader reader(path);
    reader.setScaledSize(size);
    return QPixmap::fromImageReader(&reader);
}

} // namespace

ApplicationIcons::ApplicationIcons()
    : QQuickImageProvider(Pixmap)
{
}

QUrl ApplicationIcons::url(const QString& icon)
{
    const bool exists = QDir::isAbsolutePath(icon) ? QFileInfo::exists(icon)
                                                   : !icon.isEmpty() && QIcon::hasThemeIcon(icon);
    if (!exists)
        return {};
    // A path in the middle of an address would lose its first stroke.
    return QUrl(u"image://%1/%2"_s.arg(QStringView(kID),
                                       QString::fromLatin1(QUrl::toPercentEncoding(icon))),
                QUrl::StrictMode);
}

QPixmap ApplicationIcons::requestPixmap(const QString& id, QSize* size, const QSize& requestedSize)
{
    const QSize wanted = requestedSize.isEmpty() ? kUsual : requestedSize;
    const QString icon = QUrl::fromPercentEncoding(id.toUtf8());
    const QPixmap pixmap =
        QDir::isAbsolutePath(icon) ? read(icon, wanted) : QIcon::fromTheme(icon).pixmap(wanted);
    *size = pixmap.size();
    return pixmap;
}

} // namespace mossbank
