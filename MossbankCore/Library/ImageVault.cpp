// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/ImageVault.h"

#include "MossbankCore/Library/AesGcm.h"
#include "MossbankCore/Library/OpenSslFailure.h"

#include <QFile>

#include <openssl/rand.h>

#include <algorithm>
#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

constexpr qsizetype kHeaderSize = ImageVault::marker.size() + AesGcm::kNonceSize;

} // namespace

ImageVault::ImageVault(SymmetricKey key)
    : m_key(std::move(key))
{
}

QByteArray ImageVault::sealed(const QByteArray& jpeg) const
{
    QByteArray file(kHeaderSize + jpeg.size() + AesGcm::kTagSize, Qt::Uninitialized);
    char* const nonce = std::copy(marker.begin(), marker.end(), file.data());
    OpenSslFailure::forgetEarlier();
    if (RAND_bytes(reinterpret_cast<unsigned char*>(nonce), AesGcm::kNonceSize) != 1)
        throw OpenSslFailure::latest(u"The screenshot could not be encrypted."_s);
    AesGcm::seal(m_key, nonce, jpeg, nonce + AesGcm::kNonceSize);
    return file;
}

std::optional<QByteArray> ImageVault::opened(const QByteArray& bytes) const
{
    if (!isSealed(bytes))
        return bytes;
    if (bytes.size() < kHeaderSize + AesGcm::kTagSize)
        return std::nullopt;
    const QByteArrayView sealed = QByteArrayView(bytes).sliced(kHeaderSize);
    QByteArray jpeg(sealed.size() - AesGcm::kTagSize, Qt::Uninitialized);
    if (!AesGcm::open(m_key, bytes.constData() + marker.size(), sealed, jpeg.data()))
        return std::nullopt;
    return jpeg;
}

bool ImageVault::isSealed(QByteArrayView bytes)
{
    return bytes.startsWith(marker);
}

std::optional<QByteArray> ImageVault::picture(const QString& path,
                                              const std::optional<ImageVault>& vault)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return std::nullopt;
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return std::nullopt;
    return vault ? vault->opened(bytes) : bytes;
}

} // namespace mossbank
