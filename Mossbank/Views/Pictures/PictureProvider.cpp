// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Pictures/PictureProvider.h"

#include "Mossbank/Model/StoredPicture.h"
#include "MossbankCore/Library/Memory.h"

#include <QFuture>
#include <QFutureWatcher>

#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

/// A picture that is on its way.
class Response final : public QQuickImageResponse {
    Q_OBJECT

public:
    Response(QString name, std::shared_ptr<ThumbnailCache> cache)
        : m_name(std::move(name))
        , m_cache(std::move(cache))
    {
    }

    void follow(const QFuture<QImage>& loading)
    {
        connect(&m_loading, &QFutureWatcherBase::finished, this, &Response::take);
        m_loading.setFuture(loading);
    }
    /// It is there already. Whoever asked listens only when this has been handed to him.
    void finishWith(const QImage& image)
    {
        m_image = image;
        QMetaObject::invokeMethod(this, &QQuickImageResponse::finished, Qt::QueuedConnection);
    }

    void cancel() override { m_loading.cancel(); }
    /// Null where there is no such picture, which is no error: a tile stays as it is then.
    QQuickTextureFactory* textureFactory() const override
    {
        return QQuickTextureFactory::textureFactoryForImage(m_image);
    }

private:
    void take()
    {
        const QFuture<QImage> loaded = m_loading.future();
        if (!loaded.isCanceled() && loaded.resultCount() > 0)
            m_image = loaded.result();
        if (m_cache && !m_image.isNull())
            m_cache->keep(m_image, m_name);
        // Also when it was given up: nobody else lets this go.
        Q_EMIT finished();
    }

    QString m_name;
    std::shared_ptr<ThumbnailCache> m_cache;
    QFutureWatcher<QImage> m_loading;
    QImage m_image;
};

QUrl url(const char16_t* provider, const QString& filename)
{
    if (filename.isEmpty())
        return {};
    return QUrl(u"image://%1/%2"_s.arg(QStringView(provider),
                                       QString::fromLatin1(QUrl::toPercentEncoding(filename))),
                QUrl::StrictMode);
}

} // namespace

QUrl PictureProvider::thumbnail(const QString& filename)
{
    return url(kThumbnails, filename);
}

QUrl PictureProvider::screenshot(const QString& filename)
{
    return url(kScreenshots, filename);
}

PictureProvider::PictureProvider(PictureFolder folder)
    : PictureProvider(std::move(folder), nullptr)
{
}

PictureProvider::PictureProvider(PictureFolder folder, std::shared_ptr<ThumbnailCache> thumbnails)
    : m_folder(std::move(folder))
    , m_thumbnails(std::move(thumbnails))
{
}

QQuickImageResponse* PictureProvider::requestImageResponse(const QString& id,
                                                           const QSize& requestedSize)
{
    const QString name = QUrl::fromPercentEncoding(id.toUtf8());
    auto response = std::make_unique<Response>(name, m_thumbnails);
    const auto known = m_thumbnails ? m_thumbnails->image(name) : std::nullopt;
    if (known) {
        response->finishWith(*known);
    } else if (!isValidFilename(name)) {
        response->finishWith({});
    } else {
        const QSize most = m_thumbnails ? QSize(kThumbnailSize, kThumbnailSize) : requestedSize;
        response->follow(StoredPicture::load(m_folder.file(name), m_folder.vault, most));
    }
    return response.release();
}

} // namespace mossbank

#include "PictureProvider.moc"
