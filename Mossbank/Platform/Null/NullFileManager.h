// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/FileManager.h"
#include "MossbankCore/Support/Failure.h"

#include <utility>

namespace mossbank {

/// A desktop on which no folders are looked at.
class NullFileManager final : public FileManager {
public:
    explicit NullFileManager(QString reason)
        : m_reason(std::move(reason))
    {
    }

    Availability availability() const override { return Availability::missing(m_reason); }
    QFuture<void> show(const QUrl&) override
    {
        return QtFuture::makeExceptionalFuture<void>(Failure(m_reason));
    }

private:
    QString m_reason;
};

} // namespace mossbank
