// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/FileManager.h"
#include "MossbankCore/Support/Failure.h"

#include <QList>

namespace mossbank {

/// Notes the files that it would have shown.
class FakeFileManager final : public FileManager {
public:
    QList<QUrl> shown;
    /// When not empty, what it fails with.
    QString failure;

    Availability availability() const override { return {}; }

    QFuture<void> show(const QUrl& file) override
    {
        if (!failure.isEmpty())
            return QtFuture::makeExceptionalFuture<void>(Failure(failure));
        shown.append(file);
        return QtFuture::makeReadyFuture();
    }
};

} // namespace mossbank
