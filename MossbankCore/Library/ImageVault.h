// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Library/SymmetricKey.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

namespace mossbank {

/// Seals pictures before they reach the disk, and opens them again. Whoever has none reads and
/// writes plain JPEG; a library may hold both kinds, told apart by how a file begins.
/// docs/formats.md has the form of a sealed picture.
///
/// Threading: an immutable value; any thread.
class ImageVault {
public:
    /// What every sealed picture begins with.
    static constexpr QByteArrayView marker = "BRW1";

    explicit ImageVault(SymmetricKey key);

    const SymmetricKey& key() const { return m_key; }

    /// The sealed form, 32 bytes longer and another each time. Throws StoreError.
    QByteArray sealed(const QByteArray& jpeg) const;

    /// The picture in its plain form. What is not sealed is handed back as it is. Absent when it
    /// was sealed with another key, altered or cut short.
    std::optional<QByteArray> opened(const QByteArray& bytes) const;

    /// Whether the bytes begin as a sealed picture does. It says nothing of whether they open.
    static bool isSealed(QByteArrayView bytes);

    /// The bytes of the file at `path`, opened where there is a vault. Absent when it cannot be
    /// read or opened. A sealed picture without a vault comes as it is, and is no image.
    static std::optional<QByteArray> picture(const QString& path,
                                             const std::optional<ImageVault>& vault);

private:
    SymmetricKey m_key;
};

} // namespace mossbank
