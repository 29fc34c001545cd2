// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>

namespace mossbank {

/// What seals pictures before they are written. A store without one writes plain JPEG.
///
/// Threading: the store's queue.
class ImageVault {
public:
    ImageVault() = default;
    virtual ~ImageVault() = default;
    ImageVault(const ImageVault&) = delete;
    ImageVault& operator=(const ImageVault&) = delete;

    /// The sealed form of `jpeg`. Throws StoreError when it cannot be sealed.
    virtual QByteArray sealed(const QByteArray& jpeg) const = 0;
};

} // namespace mossbank
