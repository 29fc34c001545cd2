// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Library/ImageVault.h"

#include <QString>
#include <QtQmlIntegration>

#include <optional>

namespace mossbank {

/// Where the pictures of a library are, and what opens them.
struct PictureFolder {
    Q_GADGET
    QML_ANONYMOUS

public:
    QString path;
    std::optional<ImageVault> vault = {};

    /// The file of that name. What the library calls a picture need not be the name of one.
    QString file(const QString& name) const { return path + u'/' + name; }
};

} // namespace mossbank
