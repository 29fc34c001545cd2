// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/AesGcm.h"

#include "MossbankCore/Library/OpenSslFailure.h"

#include <openssl/evp.h>

#include <algorithm>
#include <memory>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// OpenSSL takes lengths as int; this is well below the largest, and a whole number of blocks.
constexpr qsizetype kLongestPiece = 1 << 30;

struct FreeContext {
    void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};
using Context = std::unique_ptr<EVP_CIPHER_CTX, FreeContext>;

/// Looked up once: that takes longer than the encryption of some thousand bytes.
const EVP_CIPHER* cipher()
{
    static const EVP_CIPHER* const kCipher = EVP_CIPHER_fetch(nullptr, "AES-256-GCM", nullptr);
    return kCipher;
}

const unsigned char* in(const char* bytes)
{
    return reinterpret_cast<const unsigned char*>(bytes);
}

unsigned char* out(char* bytes)
{
    return reinterpret_cast<unsigned char*>(bytes);
}

/// Puts `input` through, piece by piece. No bytes at all would mean something else to OpenSSL.
template <typename Update>
bool putThrough(Update update, EVP_CIPHER_CTX* context, QByteArrayView input, char* output)
{
    for (qsizetype done = 0; done < input.size(); done += kLongestPiece) {
        const int length = static_cast<int>(std::min(input.size() - done, kLongestPiece));
        int written = 0;
        if (update(context, out(output + done), &written, in(input.data() + done), length) != 1 ||
            written != length)
            return false;
    }
    return true;
}

} // namespace

void AesGcm::seal(const SymmetricKey& key, const char* nonce, QByteArrayView plain, char* sealed)
{
    OpenSslFailure::forgetEarlier();
    const Context context(EVP_CIPHER_CTX_new());
    char* const tag = sealed + plain.size();
    int written = 0;
    const bool isSealed =
        context && cipher() &&
        EVP_EncryptInit_ex2(context.get(), cipher(), key.bytes().data(), in(nonce), nullptr) == 1 &&
        putThrough(EVP_EncryptUpdate, context.get(), plain, sealed) &&
        EVP_EncryptFinal_ex(context.get(), out(tag), &written) == 1 && written == 0 &&
        EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_GET_TAG, kTagSize, tag) == 1;
    if (!isSealed)
        throw OpenSslFailure::latest(u"The screenshot could not be encrypted."_s);
}

bool AesGcm::open(const SymmetricKey& key, const char* nonce, QByteArrayView sealed, char* plain)
{
    const QByteArrayView ciphertext = sealed.chopped(kTagSize);
    QByteArray tag = sealed.last(kTagSize).toByteArray();
    const Context context(EVP_CIPHER_CTX_new());
    int written = 0;
    return context && cipher() &&
           EVP_DecryptInit_ex2(context.get(), cipher(), key.bytes().data(), in(nonce), nullptr) ==
               1 &&
           putThrough(EVP_DecryptUpdate, context.get(), ciphertext, plain) &&
           EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_SET_TAG, kTagSize, tag.data()) == 1 &&
           EVP_DecryptFinal_ex(context.get(), out(plain + ciphertext.size()), &written) == 1;
}

} // namespace mossbank
