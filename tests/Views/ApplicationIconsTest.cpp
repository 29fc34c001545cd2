// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/ApplicationIcons.h"

#include <QDir>
#include <QIcon>
#include <QPixmap>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace mossbank;

class ApplicationIconsTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_folder.isValid());
        QDir().mkpath(m_folder.filePath(u"hicolor/48x48/apps"_s));
        QVERIFY(picture(Qt::green).save(m_folder.filePath(u"hicolor/48x48/apps/heron.png"_s)));
        QFile index(m_folder.filePath(u"hicolor/index.theme"_s));
        QVERIFY(index.open(QIODevice::WriteOnly));
        index.write("[Icon Theme]\nName=Test\nDirectories=48x48/apps\n\n[48x48/apps]\nSize=48\n");
        index.close();
        QIcon::setThemeSearchPaths({m_folder.path()});
        QIcon::setThemeName(u"hicolor"_s);
        QVERIFY(picture(Qt::red).save(pathOf(u"a b%c/d.png"_s)));
    }

    void aNameIsLookedForInTheTheme() { QCOMPARE(colourOf(u"heron"_s), QColor(Qt::green)); }

    void aPathIsAPicture() { QCOMPARE(colourOf(pathOf(u"a b%c/d.png"_s)), QColor(Qt::red)); }

    void whatIsNoPictureIsNull_data()
    {
        QTest::addColumn<QString>("icon");
        QTest::newRow("a name") << u"kingfisher"_s;
        QTest::newRow("a path") << u"/nowhere/kingfisher.png"_s;
        QTest::newRow("a folder") << m_folder.path();
        QTest::newRow("no picture") << m_folder.filePath(u"hicolor/index.theme"_s);
    }
    void whatIsNoPictureIsNull()
    {
        QFETCH(QString, icon);
        QSize size;
        QVERIFY(m_icons.requestPixmap(icon, &size, {28, 28}).isNull());
    }

    void whatIsNotThereHasNoAddress_data()
    {
        QTest::addColumn<QString>("icon");
        QTest::newRow("no name") << QString();
        QTest::newRow("a name") << u"kingfisher"_s;
        QTest::newRow("a path") << u"/nowhere/kingfisher.png"_s;
    }
    void whatIsNotThereHasNoAddress()
    {
        QFETCH(QString, icon);
        QCOMPARE(ApplicationIcons::url(icon), QUrl());
    }

    void itHasTheSizeThatIsAskedFor()
    {
        QSize size;
        QCOMPARE(m_icons.requestPixmap(idOf(pathOf(u"a b%c/d.png"_s)), &size, {28, 28}).size(),
                 QSize(28, 28));
        QCOMPARE(size, QSize(28, 28));
    }

private:
    static QPixmap picture(Qt::GlobalColor colour)
    {
        QPixmap pixmap(48, 48);
        pixmap.fill(colour);
        return pixmap;
    }
    QString pathOf(const QString& file) const
    {
        QDir().mkpath(QFileInfo(m_folder.filePath(file)).path());
        return m_folder.filePath(file);
    }
    /// As an engine hands it to a provider.
    static QString idOf(const QString& icon)
    {
        return ApplicationIcons::url(icon)
            .toString(QUrl::RemoveScheme | QUrl::RemoveAuthority)
            .mid(1);
    }
    QColor colourOf(const QString& icon)
    {
        QSize size;
        const QPixmap pixmap = m_icons.requestPixmap(idOf(icon), &size, {28, 28});
        return pixmap.isNull() ? QColor() : pixmap.toImage().pixelColor(size.width() / 2, 5);
    }

    QTemporaryDir m_folder;
    ApplicationIcons m_icons;
};

QTEST_MAIN(ApplicationIconsTest)
#include "ApplicationIconsTest.moc"
