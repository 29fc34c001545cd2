// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/StoredPicture.h"

#include "MossbankCore/Support/Background.h"

#include <QBuffer>
#include <QFile>
#include <QRegularExpression>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <sys/resource.h>
#include <unistd.h>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

QByteArray encoded(const QSize& size, const char* format,
                   QImage::Format pixels = QImage::Format_RGB32)
{
    QImage image(size, pixels);
    image.fill(QColor(20, 90, 200));
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return buffer.data();
}

/// A JPEG whose header claims another size than it has.
QByteArray claiming(const QSize& size)
{
    QByteArray jpeg = encoded({16, 16}, "jpeg");
    const qsizetype frame = jpeg.indexOf(QByteArray::fromHex("ffc0"));
    Q_ASSERT(frame > 0);
    const auto put = [&](qsizetype at, int number) {
        jpeg[frame + at] = static_cast<char>(number >> 8);
        jpeg[frame + at + 1] = static_cast<char>(number);
    };
    put(5, size.height());
    put(7, size.width());
    return jpeg;
}

} // namespace

class StoredPictureTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aPlainPictureIsDecoded()
    {
        const QImage image = loaded(encoded({300, 200}, "jpeg"), std::nullopt);
        QCOMPARE(image.size(), QSize(300, 200));
        const QColor colour = image.pixelColor(150, 100);
        QVERIFY(qAbs(colour.blue() - 200) < 8 && qAbs(colour.red() - 20) < 8);
    }

    void aSealedPictureIsOpenedAndDecoded()
    {
        const QByteArray sealed = m_vault.sealed(encoded({300, 200}, "jpeg"));
        QCOMPARE(loaded(sealed, m_vault).size(), QSize(300, 200));
    }

    void aPlainPictureIsDecodedWithAVaultToo()
    {
        QCOMPARE(loaded(encoded({30, 20}, "jpeg"), m_vault).size(), QSize(30, 20));
    }

    void whatIsNoPictureIsNone_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("hasVault");
        const QByteArray jpeg = encoded({300, 200}, "jpeg");
        QByteArray altered = m_vault.sealed(jpeg);
        altered[100] = static_cast<char>(altered[100] ^ 1);
        QTest::newRow("sealed, and there is no vault") << m_vault.sealed(jpeg) << false;
        QTest::newRow("sealed with another key")
            << ImageVault(SymmetricKey::random()).sealed(jpeg) << true;
        QTest::newRow("sealed and altered") << altered << true;
        QTest::newRow("sealed and cut short") << m_vault.sealed(jpeg).chopped(1) << true;
        QTest::newRow("sealed nothing") << m_vault.sealed({}) << true;
        QTest::newRow("an empty file") << QByteArray() << true;
        QTest::newRow("a text") << QByteArray("no picture at all") << true;
        QTest::newRow("the beginning of a JPEG") << jpeg.first(20) << true;
        // Nothing of the kind is ever kept.
        QTest::newRow("a picture of another kind") << encoded({30, 20}, "png") << true;
        QTest::newRow("the largest size that can be claimed") << claiming({65'500, 65'500}) << true;
        QTest::newRow("a little more than can be shown")
            << encoded({10'000, 5001}, "jpeg", QImage::Format_Grayscale8) << true;
    }
    void whatIsNoPictureIsNone()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, hasVault);
        QVERIFY(loaded(bytes, hasVault ? std::optional(m_vault) : std::nullopt).isNull());
    }

    void aSealedPictureWithoutAVaultIsNothingToComplainOf()
    {
        QTest::failOnWarning(QRegularExpression(u"."_s));
        QVERIFY(loaded(m_vault.sealed(encoded({30, 20}, "jpeg")), std::nullopt).isNull());
    }

    void aPictureAsLargeAsAnyScreenIsShown()
    {
        QCOMPARE(loaded(encoded({2048, 8192}, "jpeg"), std::nullopt).size(), QSize(2048, 8192));
    }

    void aMissingFileIsNoPicture()
    {
        QVERIFY(StoredPicture::load(u"/nowhere/a.jpg"_s, m_vault).result().isNull());
        QVERIFY(StoredPicture::load(u"/tmp"_s, m_vault).result().isNull());
    }

    void aFileOfAnySizeIsNotReadForAPicture()
    {
        const QTemporaryDir folder;
        QFile file(folder.filePath(u"a.jpg"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(encoded({30, 20}, "jpeg"));
        // It takes no room on the disk.
        QVERIFY(file.resize(qint64(1) << 40));
        file.close();
        QVERIFY(StoredPicture::load(file.fileName(), std::nullopt).result().isNull());
    }

    void itIsDoneElsewhereAndAheadOfWhatMayWait()
    {
        // Every thread that gives way is taken.
        QSemaphore release;
        QList<QFuture<void>> busy;
        for (int thread = 0; thread < 2 * QThread::idealThreadCount(); ++thread)
            busy.append(inBackground([&] { release.acquire(); }));
        QCOMPARE(loaded(encoded({30, 20}, "jpeg"), std::nullopt).size(), QSize(30, 20));
        release.release(static_cast<int>(busy.size()));
        for (QFuture<void>& future : busy)
            future.waitForFinished();

        struct Where {
            Qt::HANDLE thread = nullptr;
            int nice = -1;
        };
        const Where where =
            atOnce([] {
                return Where{QThread::currentThreadId(),
                             ::getpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()))};
            }).result();
        QVERIFY(where.thread != QThread::currentThreadId());
        QCOMPARE(where.nice, ::getpriority(PRIO_PROCESS, static_cast<id_t>(::gettid())));
    }

    void manyAreLoadedAtOnce()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"a.jpg"_s);
        QVERIFY(put(path, m_vault.sealed(encoded({300, 200}, "jpeg"))));
        QList<QFuture<QImage>> loads;
        for (int number = 0; number < 100; ++number)
            loads.append(StoredPicture::load(path, m_vault));
        for (QFuture<QImage>& load : loads)
            QCOMPARE(load.result().size(), QSize(300, 200));
    }

private:
    static bool put(const QString& path, const QByteArray& bytes)
    {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    }

    static QImage loaded(const QByteArray& bytes, const std::optional<ImageVault>& vault)
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"a.jpg"_s);
        return put(path, bytes) ? StoredPicture::load(path, vault).result() : QImage();
    }

    const ImageVault m_vault{SymmetricKey::random()};
};

QTEST_GUILESS_MAIN(StoredPictureTest)
#include "StoredPictureTest.moc"
