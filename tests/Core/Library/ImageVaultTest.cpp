// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/ImageVault.h"

#include "tests/Core/Library/LibraryTesting.h"
#include "tests/Fakes/NonceHook.h"

#include <QSet>

#include <openssl/err.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kOverhead = 32;
constexpr qsizetype kMarkerSize = 4;

/// Begins as a JPEG does.
const QByteArray kJpeg = QByteArray::fromHex("ffd8ffe000104a46494600010100") + "pixels, pixels";

} // namespace

class ImageVaultTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { NonceHook::remove(); }

    void theMarkerIsFourLetters()
    {
        QCOMPARE(ImageVault::marker.toByteArray(), QByteArray("BRW1"));
        QCOMPARE(ImageVault::marker.toByteArray().toHex(), QByteArray("42525731"));
    }

    void aSealedPictureIsMarkerNonceCiphertextAndTag()
    {
        const QByteArray sealed = m_vault.sealed(kJpeg);
        QCOMPARE(sealed.size(), kJpeg.size() + kOverhead);
        QVERIFY(sealed.startsWith("BRW1"));
        QVERIFY(!sealed.contains("pixels"));
        QVERIFY(!sealed.contains(kJpeg.first(8)));
        QCOMPARE(m_vault.opened(sealed), std::optional(kJpeg));
    }

    void picturesOfAnySizeComeBack_data()
    {
        QTest::addColumn<qsizetype>("size");
        for (const qsizetype size : {1, 15, 16, 17, 300 * 1024, 5'000'001})
            QTest::addRow("%lld bytes", static_cast<long long>(size)) << size;
    }
    void picturesOfAnySizeComeBack()
    {
        QFETCH(qsizetype, size);
        QByteArray picture(size, 'p');
        for (qsizetype at = 0; at < size; ++at)
            picture[at] = static_cast<char>(at * 31);
        const QByteArray sealed = m_vault.sealed(picture);
        QCOMPARE(sealed.size(), size + kOverhead);
        QVERIFY(m_vault.opened(sealed) == std::optional(picture));
    }

    void nothingSealsTo32BytesAndOpensToNothing()
    {
        const QByteArray sealed = m_vault.sealed({});
        QCOMPARE(sealed.size(), kOverhead);
        const auto opened = m_vault.opened(sealed);
        QVERIFY(opened.has_value());
        QCOMPARE(opened->size(), 0);
    }

    void theSamePictureSealsToAnotherFileEachTime()
    {
        QSet<QByteArray> files;
        QSet<QByteArray> nonces;
        for (int time = 0; time < 1000; ++time) {
            const QByteArray sealed = m_vault.sealed(kJpeg);
            files.insert(sealed);
            nonces.insert(sealed.sliced(kMarkerSize, 12));
        }
        QCOMPARE(files.size(), 1000);
        QCOMPARE(nonces.size(), 1000);
    }

    void whatIsNotSealedComesBackAsItIs_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("a JPEG") << kJpeg;
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("less than a marker") << QByteArray("BRW");
        QTest::newRow("another version's marker") << QByteArray("BRW2") + QByteArray(40, 'x');
        QTest::newRow("a marker in small letters") << QByteArray("brw1") + QByteArray(40, 'x');
        QTest::newRow("a marker further on") << QByteArray(" BRW1") + QByteArray(40, 'x');
    }
    void whatIsNotSealedComesBackAsItIs()
    {
        QFETCH(QByteArray, bytes);
        QVERIFY(!ImageVault::isSealed(bytes));
        QCOMPARE(m_vault.opened(bytes), std::optional(bytes));
    }

    void whetherItIsSealedIsAMatterOfFourBytes()
    {
        QVERIFY(ImageVault::isSealed("BRW1"));
        QVERIFY(ImageVault::isSealed("BRW1 and anything"));
        QVERIFY(ImageVault::isSealed(m_vault.sealed(kJpeg)));
        QVERIFY(!ImageVault::isSealed("BRW"));
        QVERIFY(!ImageVault::isSealed(""));
        QVERIFY(!ImageVault::isSealed(QByteArrayView()));
    }

    void theMarkerAloneOpensToNothingAtAll() { QCOMPARE(m_vault.opened("BRW1"), std::nullopt); }

    void oneBitChangedAnywhereIsNotOpened()
    {
        const QByteArray sealed = m_vault.sealed(kJpeg);
        for (qsizetype at = 0; at < sealed.size(); ++at) {
            for (int bit = 0; bit < 8; ++bit) {
                QByteArray altered = sealed;
                altered[at] = static_cast<char>(altered[at] ^ (1 << bit));
                // Without its marker it counts as a picture that never was sealed.
                const auto expected =
                    at < kMarkerSize ? std::optional(altered) : std::optional<QByteArray>();
                QVERIFY2(m_vault.opened(altered) == expected,
                         qPrintable(u"byte %1, bit %2"_s.arg(at).arg(bit)));
            }
        }
        QCOMPARE(m_vault.opened(sealed), std::optional(kJpeg));
    }

    void cutShortAnywhereIsNotOpened()
    {
        const QByteArray sealed = m_vault.sealed(kJpeg);
        for (qsizetype size = 0; size < sealed.size(); ++size) {
            const QByteArray cut = sealed.first(size);
            const auto expected =
                size < kMarkerSize ? std::optional(cut) : std::optional<QByteArray>();
            QVERIFY2(m_vault.opened(cut) == expected, qPrintable(QString::number(size)));
        }
    }

    void oneByteMoreIsNotOpened()
    {
        QCOMPARE(m_vault.opened(m_vault.sealed(kJpeg) + '\0'), std::nullopt);
    }

    void anotherKeyDoesNotOpenIt()
    {
        const ImageVault other(SymmetricKey::random());
        QCOMPARE(other.opened(m_vault.sealed(kJpeg)), std::nullopt);
    }

    void theSameKeyInAnotherVaultOpensIt()
    {
        const auto bytes = m_vault.key().bytes();
        const auto key = SymmetricKey::fromBytes(
            QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
        QVERIFY(key);
        QCOMPARE(ImageVault(*key).opened(m_vault.sealed(kJpeg)), std::optional(kJpeg));
    }

    void withoutANonceNothingIsSealed()
    {
        NonceHook::set([] { return false; });
        QCOMPARE(failure<StoreError>([&] { m_vault.sealed(kJpeg); }),
                 u"The screenshot could not be encrypted."_s);
        NonceHook::remove();
        QCOMPARE(m_vault.opened(m_vault.sealed(kJpeg)), std::optional(kJpeg));
    }

    void whatOpenSslComplainsOfIsToldInItsWords()
    {
        // Somebody else's, from before, is not taken for the reason.
        ERR_raise(ERR_LIB_USER, ERR_R_PASSED_NULL_PARAMETER);
        NonceHook::set([] {
            ERR_raise(ERR_LIB_USER, ERR_R_MALLOC_FAILURE);
            return false;
        });
        QCOMPARE(failure<StoreError>([&] { m_vault.sealed(kJpeg); }), u"malloc failure"_s);
    }

    void manyThreadsSealAndOpenAtOnce()
    {
        // Threads of their own, which end: those of a pool outlive OpenSSL's tidying up.
        std::atomic<int> right = 0;
        {
            std::vector<std::jthread> threads;
            for (int thread = 0; thread < 8; ++thread) {
                threads.emplace_back([&right, vault = m_vault] {
                    for (int time = 0; time < 300; ++time)
                        right += vault.opened(vault.sealed(kJpeg)) == std::optional(kJpeg);
                });
            }
        }
        QCOMPARE(right, 8 * 300);
    }

    void aPictureFileIsOpenedWhereThereIsAVault()
    {
        const LibraryFolder folder;
        const QString plain = folder.beside(u"plain.jpg"_s);
        const QString sealed = folder.beside(u"sealed.jpg"_s);
        const QByteArray sealedBytes = m_vault.sealed(kJpeg);
        QVERIFY(putFile(plain, kJpeg));
        QVERIFY(putFile(sealed, sealedBytes));

        QCOMPARE(ImageVault::picture(plain, m_vault), std::optional(kJpeg));
        QCOMPARE(ImageVault::picture(sealed, m_vault), std::optional(kJpeg));
        QCOMPARE(ImageVault::picture(plain, std::nullopt), std::optional(kJpeg));
        // As it is, and so no image.
        QCOMPARE(ImageVault::picture(sealed, std::nullopt), std::optional(sealedBytes));
        QCOMPARE(ImageVault::picture(sealed, ImageVault(SymmetricKey::random())), std::nullopt);
    }

    void aPictureThatCannotBeReadIsAbsent_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("no file") << u"/nowhere/at/all.jpg"_s;
        QTest::newRow("no name") << u""_s;
        QTest::newRow("a folder") << u"/tmp"_s;
        QTest::newRow("a file whose reading fails") << u"/proc/self/mem"_s;
    }
    void aPictureThatCannotBeReadIsAbsent()
    {
        QFETCH(QString, path);
        QCOMPARE(ImageVault::picture(path, m_vault), std::nullopt);
        QCOMPARE(ImageVault::picture(path, std::nullopt), std::nullopt);
    }

    void anEmptyPictureFileIsEmptyAndNotAbsent()
    {
        const LibraryFolder folder;
        const QString path = folder.beside(u"empty.jpg"_s);
        QVERIFY(putFile(path, {}));
        QCOMPARE(ImageVault::picture(path, m_vault), std::optional(QByteArray()));
    }

private:
    const ImageVault m_vault{SymmetricKey::random()};
};

QTEST_GUILESS_MAIN(ImageVaultTest)
#include "ImageVaultTest.moc"
