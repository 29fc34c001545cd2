// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Library/ImageVault.h"

#include <QFuture>
#include <QImage>
#include <QSize>
#include <QString>

#include <optional>

namespace mossbank {

/// Pictures of the library, for showing.
class StoredPicture {
public:
    StoredPicture() = delete;

    /// The picture in the file at `path`, opened and decoded in the background, ahead of what may
    /// wait. A null image when it is missing, does not open, or is no picture. A picture larger
    /// than `most` pixels comes as large as fits in there; an empty size lets it be. Given up where
    /// its future is cancelled.
    ///
    /// Threading: any thread.
    /// Errors: none; nobody is told apart what is missing and what cannot be opened.
    [[nodiscard]] static QFuture<QImage>
    load(const QString& path, const std::optional<ImageVault>& vault, QSize most = {});
};

} // namespace mossbank
