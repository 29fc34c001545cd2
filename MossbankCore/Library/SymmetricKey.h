// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArrayView>

#include <memory>
#include <optional>
#include <span>

namespace mossbank {

/// A secret key of 256 bits. Copies share one place in memory, which is wiped when the last of
/// them goes.
///
/// Threading: an immutable value; any thread.
class SymmetricKey {
public:
    static constexpr std::size_t kSize = 32;
    using Bytes = std::span<const unsigned char, kSize>;

    /// A key that nobody has had before. Throws StoreError when the system has no random numbers.
    static SymmetricKey random();
    /// The key of exactly these bytes. None unless they are 32.
    static std::optional<SymmetricKey> fromBytes(QByteArrayView bytes);

    SymmetricKey(const SymmetricKey&) = default;
    SymmetricKey& operator=(const SymmetricKey&) = default;
    ~SymmetricKey() = default;

    /// Valid while this key is. Whoever copies them wipes the copy.
    Bytes bytes() const;

    /// Takes the same time wherever they differ.
    friend bool operator==(const SymmetricKey& one, const SymmetricKey& other);

private:
    struct Secret;
    explicit SymmetricKey(std::shared_ptr<const Secret> secret);

    std::shared_ptr<const Secret> m_secret;
};

/// Overwrites the bytes of a secret. A byte array that shares them with others wipes a copy of its
/// own, so keep it unshared.
void wipe(QByteArray& secret);

} // namespace mossbank
