// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Library/SymmetricKey.h"

#include <QByteArrayView>

namespace mossbank {

/// AES-256-GCM without additional data, as OpenSSL has it.
///
/// Threading: any thread, several at once.
class AesGcm {
public:
    AesGcm() = delete;

    static constexpr qsizetype kNonceSize = 12;
    static constexpr qsizetype kTagSize = 16;

    /// Writes the ciphertext, as long as `plain`, to `sealed`, and the tag behind it. No nonce
    /// may come twice with one key. Throws StoreError.
    static void seal(const SymmetricKey& key, const char* nonce, QByteArrayView plain,
                     char* sealed);

    /// Writes what was sealed to `plain`, which has room for all of `sealed` but its tag. False
    /// when it was sealed otherwise or has been altered; then `plain` is worth nothing. `sealed`
    /// holds at least a tag.
    static bool open(const SymmetricKey& key, const char* nonce, QByteArrayView sealed,
                     char* plain);

    /// Throws StoreError unless the cipher gives what is published for it. Before it is relied on.
    static void check();
};

} // namespace mossbank
