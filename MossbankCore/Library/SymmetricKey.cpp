// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/SymmetricKey.h"

#include "MossbankCore/Library/OpenSslFailure.h"

#include <openssl/crypto.h>
#include <openssl/rand.h>

#include <algorithm>
#include <array>
#include <utility>

namespace mossbank {

using namespace Qt::StringLiterals;

struct SymmetricKey::Secret {
    std::array<unsigned char, kSize> bytes = {};

    Secret() = default;
    ~Secret() { OPENSSL_cleanse(bytes.data(), bytes.size()); }
    Q_DISABLE_COPY_MOVE(Secret)
};

SymmetricKey::SymmetricKey(std::shared_ptr<const Secret> secret)
    : m_secret(std::move(secret))
{
}

SymmetricKey SymmetricKey::random()
{
    const auto secret = std::make_shared<Secret>();
    OpenSslFailure::forgetEarlier();
    if (RAND_priv_bytes(secret->bytes.data(), static_cast<int>(kSize)) != 1)
        throw OpenSslFailure::latest(u"No encryption key could be made."_s);
    return SymmetricKey(secret);
}

std::optional<SymmetricKey> SymmetricKey::fromBytes(QByteArrayView bytes)
{
    if (bytes.size() != static_cast<qsizetype>(kSize))
        return std::nullopt;
    const auto secret = std::make_shared<Secret>();
    std::copy(bytes.begin(), bytes.end(), secret->bytes.begin());
    return SymmetricKey(secret);
}

SymmetricKey::Bytes SymmetricKey::bytes() const
{
    return m_secret->bytes;
}

bool operator==(const SymmetricKey& one, const SymmetricKey& other)
{
    return CRYPTO_memcmp(one.bytes().data(), other.bytes().data(), SymmetricKey::kSize) == 0;
}

void wipe(QByteArray& secret)
{
    OPENSSL_cleanse(secret.data(), static_cast<std::size_t>(secret.size()));
}

} // namespace mossbank
