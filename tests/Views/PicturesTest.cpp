// SPDX-License-Identifier: Apache-2.0
//
// Pictures of the library on their way into a window.
#include "Mossbank/Views/Pictures/PictureProvider.h"
#include "Mossbank/Views/Pictures/ViewerPicture.h"
#include "Mossbank/Views/QuickWindow.h"

#include <QDir>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace mossbank;

class PicturesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_folder.isValid());
        save(u"red.jpg"_s, {1920, 1080}, Qt::red);
        save(u"blue.jpg"_s, {400, 800}, Qt::blue);
        QFile bad(m_folder.filePath(u"bad.jpg"_s));
        QVERIFY(bad.open(QIODevice::WriteOnly));
        bad.write("no picture");
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    }

    // The cache

    void whatWasKeptIsThere()
    {
        ThumbnailCache cache;
        QVERIFY(!cache.image(u"a"_s));
        cache.keep(square(10), u"a"_s);
        QCOMPARE(cache.image(u"a"_s)->size(), QSize(10, 10));
    }

    void itHoldsSoManyAndNoMore()
    {
        ThumbnailCache cache;
        for (int number = 0; number < 600; ++number)
            cache.keep(square(2), QString::number(number));
        QCOMPARE(cache.count(), ThumbnailCache::kCountLimit);
        QVERIFY(!cache.image(u"0"_s));
        QVERIFY(cache.image(u"599"_s).has_value());
    }

    void itHoldsSoManyBytesAndNoMore()
    {
        ThumbnailCache cache;
        constexpr int kSide = 512;
        for (int number = 0; number < 100; ++number)
            cache.keep(square(kSide), QString::number(number));
        QCOMPARE(cache.count(), ThumbnailCache::kTotalCostLimit / (kSide * kSide * 4));
    }

    // The provider

    void aSmallOneIsMadeAndKept()
    {
        const auto cache = std::make_shared<ThumbnailCache>();
        PictureProvider provider({m_folder.path()}, cache);
        QCOMPARE(received(provider, u"red.jpg"_s).size(), QSize(220, 123));
        QCOMPARE(received(provider, u"blue.jpg"_s).size(), QSize(110, 220));
        QCOMPARE(cache->count(), 2);
        // Also where the file has gone since.
        cache->keep(square(7), u"gone.jpg"_s);
        QCOMPARE(received(provider, u"gone.jpg"_s).size(), QSize(7, 7));
    }

    void aWholeOneIsAsLargeAsItIs()
    {
        PictureProvider provider({m_folder.path()});
        QCOMPARE(received(provider, u"red.jpg"_s).size(), QSize(1920, 1080));
        QCOMPARE(received(provider, u"red.jpg"_s, {960, 960}).size(), QSize(960, 540));
    }

    void whatIsNoPictureIsNone_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("missing") << u"missing.jpg"_s;
        QTest::newRow("damaged") << u"bad.jpg"_s;
        QTest::newRow("elsewhere") << u"../red.jpg"_s;
        QTest::newRow("nothing") << QString();
    }
    void whatIsNoPictureIsNone()
    {
        QFETCH(QString, name);
        const auto cache = std::make_shared<ThumbnailCache>();
        PictureProvider provider({m_folder.path()}, cache);
        QVERIFY(received(provider, name).isNull());
        QCOMPARE(cache->count(), 0);
    }

    void oneThatIsGivenUpEndsAllTheSame()
    {
        PictureProvider provider({m_folder.path()});
        const std::unique_ptr<QQuickImageResponse> response(
            provider.requestImageResponse(u"red.jpg"_s, {}));
        QSignalSpy finished(response.get(), &QQuickImageResponse::finished);
        response->cancel();
        QTRY_COMPARE(finished.size(), 1);
    }

    void aNameIsWrittenAsAnAddress()
    {
        QCOMPARE(PictureProvider::thumbnail(u"a b#c.jpg"_s).toEncoded(),
                 "image://thumbnail/a%20b%23c.jpg"_qba);
        QCOMPARE(PictureProvider::screenshot({}), QUrl());
    }

    // The viewer

    void theOneBeforeStaysUntilTheNextIsThere()
    {
        const auto window = viewer(u"red.jpg"_s);
        auto& picture = *window->findChild<ViewerPicture*>();
        QTRY_COMPARE(picture.shown(), u"red.jpg"_s);
        QCOMPARE(colour(*window), QColor(Qt::red));
        picture.setFilename(u"blue.jpg"_s);
        QCOMPARE(picture.shown(), u"red.jpg"_s);
        QCOMPARE(colour(*window), QColor(Qt::red));
        QTRY_COMPARE(picture.shown(), u"blue.jpg"_s);
        QTRY_COMPARE(colour(*window), QColor(Qt::blue));
    }

    void itIsAsLargeAsFitsAndNoLarger()
    {
        const auto window = viewer(u"red.jpg"_s);
        auto& picture = *window->findChild<ViewerPicture*>();
        QTRY_COMPARE(picture.frame(), QRectF(0, 88, 400, 225));
        save(u"small.jpg"_s, {100, 50}, Qt::green);
        picture.setFilename(u"small.jpg"_s);
        QTRY_COMPARE(picture.frame(), QRectF(150, 175, 100, 50));
    }

    void oneThatCannotBeOpenedIsMissing()
    {
        const auto window = viewer(u"red.jpg"_s);
        auto& picture = *window->findChild<ViewerPicture*>();
        QTRY_COMPARE(picture.shown(), u"red.jpg"_s);
        QVERIFY(!picture.isMissing());
        picture.setFilename(u"missing.jpg"_s);
        QTRY_VERIFY(picture.isMissing());
        QCOMPARE(picture.shown(), QString());
        QCOMPARE(colour(*window), QColor(Qt::white));
        picture.setFilename(u"red.jpg"_s);
        QTRY_VERIFY(!picture.isMissing());
        picture.setFilename({});
        QVERIFY(!picture.isMissing());
        QCOMPARE(picture.shown(), QString());
    }

    void onlyTheLastOfManyIsShown()
    {
        const auto window = viewer(u"red.jpg"_s);
        auto& picture = *window->findChild<ViewerPicture*>();
        QTRY_COMPARE(picture.shown(), u"red.jpg"_s);
        QSignalSpy shown(&picture, &ViewerPicture::shownChanged);
        for (int time = 0; time < 10; ++time)
            picture.setFilename(time % 2 == 0 ? u"red.jpg"_s : u"blue.jpg"_s);
        QTRY_COMPARE(picture.shown(), u"blue.jpg"_s);
        QVERIFY(shown.size() <= 1);
    }

private:
    static QImage square(int side)
    {
        QImage image(side, side, QImage::Format_RGB32);
        image.fill(Qt::gray);
        return image;
    }

    void save(const QString& name, QSize size, Qt::GlobalColor colour)
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(colour);
        QVERIFY(image.save(m_folder.filePath(name), "JPEG", 100));
    }

    static QImage received(PictureProvider& provider, const QString& name, QSize size = {})
    {
        const std::unique_ptr<QQuickImageResponse> response(
            provider.requestImageResponse(name, size));
        QSignalSpy finished(response.get(), &QQuickImageResponse::finished);
        if (finished.isEmpty() && !finished.wait())
            qFatal("no answer");
        const std::unique_ptr<QQuickTextureFactory> factory(response->textureFactory());
        return factory ? factory->image() : QImage();
    }

    /// A white window of 400 by 400 with that picture in it.
    std::unique_ptr<QQuickWindow> viewer(const QString& name)
    {
        auto window = std::make_unique<QQuickWindow>();
        window->setColor(Qt::white);
        window->resize(400, 400);
        QQmlComponent component(&m_engine);
        m_engine.addImportPath(u"qrc:/"_s);
        component.setData("import Mossbank.Views\nViewerPicture { fadeDuration: 60 }", {});
        auto* const item = qobject_cast<QQuickItem*>(component.createWithInitialProperties(
            {{u"folder"_s, QVariant::fromValue(PictureFolder{m_folder.path()})},
             {u"filename"_s, name}}));
        if (!item)
            qFatal("%s", qPrintable(component.errorString()));
        item->setParent(window.get());
        item->setParentItem(window->contentItem());
        item->setSize({400, 400});
        window->show();
        if (!QTest::qWaitForWindowExposed(window.get()))
            qFatal("the window does not open");
        return window;
    }

    /// In the middle of the window.
    static QColor colour(QQuickWindow& window)
    {
        const QColor found = window.grabWindow().pixelColor(200, 200);
        // What JPEG makes of a colour is one or two off.
        const auto pure = [](int part) {
            return part > 250 ? 255 : part < 5 ? 0 : part;
        };
        return {pure(found.red()), pure(found.green()), pure(found.blue())};
    }

    QTemporaryDir m_folder;
    QQmlEngine m_engine;
};

QTEST_MAIN(PicturesTest)
#include "PicturesTest.moc"
