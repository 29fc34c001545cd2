// SPDX-License-Identifier: Apache-2.0
//
// The check of the cipher before it is relied on, with an OpenSSL that can be told to go wrong.
#include "MossbankCore/Library/AesGcm.h"
#include "MossbankCore/Library/ImageVault.h"
#include "tests/Core/Library/LibraryTesting.h"

#include <dlfcn.h>
#include <openssl/err.h>
#include <openssl/evp.h>

namespace {

enum class Defect {
    None,
    WrongCiphertext,
    WrongTag,
    WrongPlaintext,
    OpensAnything,
    OpensNothing,
    ShortCiphertext,
    RefusesToSeal,
    RefusesWithoutAWord,
};

Defect defect = Defect::None;

template <typename Function>
Function original(const char* name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

} // namespace

// These stand before OpenSSL's own for everything in this program.
extern "C" {

int EVP_EncryptInit_ex2(EVP_CIPHER_CTX* context, const EVP_CIPHER* cipher, const unsigned char* key,
                        const unsigned char* nonce, const OSSL_PARAM* parameters)
{
    if (defect == Defect::RefusesWithoutAWord)
        return 0;
    if (defect == Defect::RefusesToSeal) {
        ERR_raise(ERR_LIB_EVP, EVP_R_INITIALIZATION_ERROR);
        ERR_raise(ERR_LIB_EVP, EVP_R_NO_CIPHER_SET);
        return 0;
    }
    return original<decltype(&EVP_EncryptInit_ex2)>("EVP_EncryptInit_ex2")(context, cipher, key,
                                                                           nonce, parameters);
}

int EVP_EncryptUpdate(EVP_CIPHER_CTX* context, unsigned char* out, int* written,
                      const unsigned char* in, int length)
{
    const int status = original<decltype(&EVP_EncryptUpdate)>("EVP_EncryptUpdate")(
        context, out, written, in, length);
    if (defect == Defect::WrongCiphertext)
        out[length - 1] ^= 0x80U;
    if (defect == Defect::ShortCiphertext)
        --*written;
    return status;
}

int EVP_DecryptUpdate(EVP_CIPHER_CTX* context, unsigned char* out, int* written,
                      const unsigned char* in, int length)
{
    const int status = original<decltype(&EVP_DecryptUpdate)>("EVP_DecryptUpdate")(
        context, out, written, in, length);
    if (defect == Defect::WrongPlaintext)
        out[0] ^= 1U;
    return status;
}

int EVP_DecryptFinal_ex(EVP_CIPHER_CTX* context, unsigned char* out, int* written)
{
    const int status =
        original<decltype(&EVP_DecryptFinal_ex)>("EVP_DecryptFinal_ex")(context, out, written);
    if (defect == Defect::OpensAnything)
        return 1;
    return defect == Defect::OpensNothing ? 0 : status;
}

int EVP_CIPHER_CTX_ctrl(EVP_CIPHER_CTX* context, int what, int size, void* data)
{
    const auto standard = original<decltype(&EVP_CIPHER_CTX_ctrl)>("EVP_CIPHER_CTX_ctrl");
    const bool isTag = what == EVP_CTRL_AEAD_GET_TAG || what == EVP_CTRL_AEAD_SET_TAG;
    if (defect != Defect::WrongTag || !isTag)
        return standard(context, what, size, data);
    // It agrees with itself, and with nobody else.
    auto* const tag = static_cast<unsigned char*>(data);
    if (what == EVP_CTRL_AEAD_SET_TAG)
        tag[0] ^= 4U;
    const int status = standard(context, what, size, data);
    if (what == EVP_CTRL_AEAD_GET_TAG)
        tag[0] ^= 4U;
    return status;
}

} // extern "C"

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

/// Without a random number, which OpenSSL would have from a cipher, too.
void seal()
{
    const auto key = SymmetricKey::fromBytes(QByteArray(SymmetricKey::kSize, 'k'));
    const QByteArray plain = "a picture";
    QByteArray sealed(plain.size() + AesGcm::kTagSize, '\0');
    AesGcm::seal(*key, QByteArray(AesGcm::kNonceSize, 'n').constData(), plain, sealed.data());
}

} // namespace

class CipherTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { defect = Defect::None; }

    void aSoundCipherPasses()
    {
        QCOMPARE(failure<StoreError>([] { AesGcm::check(); }), kNoFailure);
    }

    void aDefectiveCipherIsFound_data()
    {
        QTest::addColumn<Defect>("kind");
        QTest::newRow("a wrong ciphertext") << Defect::WrongCiphertext;
        QTest::newRow("a wrong tag") << Defect::WrongTag;
        QTest::newRow("a wrong plaintext") << Defect::WrongPlaintext;
        QTest::newRow("one that opens anything") << Defect::OpensAnything;
        QTest::newRow("one that opens nothing") << Defect::OpensNothing;
    }
    void aDefectiveCipherIsFound()
    {
        QFETCH(Defect, kind);
        defect = kind;
        QCOMPARE(failure<StoreError>([] { AesGcm::check(); }),
                 u"Encryption does not work as it should on this computer."_s);
    }

    void aCipherThatRefusesIsToldInItsWords()
    {
        defect = Defect::RefusesToSeal;
        QCOMPARE(failure<StoreError>([] { seal(); }), u"initialization error"_s);
        QCOMPARE(failure<StoreError>([] { AesGcm::check(); }), u"initialization error"_s);
        // The complaint is not left for somebody else to find.
        QCOMPARE(ERR_peek_error(), 0UL);
    }

    void aCipherThatRefusesWithoutAWordIsToldInOurs_data()
    {
        QTest::addColumn<Defect>("kind");
        QTest::newRow("it does not begin") << Defect::RefusesWithoutAWord;
        QTest::newRow("it gives too little") << Defect::ShortCiphertext;
    }
    void aCipherThatRefusesWithoutAWordIsToldInOurs()
    {
        QFETCH(Defect, kind);
        defect = kind;
        QCOMPARE(failure<StoreError>([] { seal(); }), u"The screenshot could not be encrypted."_s);
    }
};

QTEST_GUILESS_MAIN(CipherTest)
#include "CipherTest.moc"
