// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/ApplicationChooser.h"
#include "MossbankCore/Support/Failure.h"

#include <utility>

namespace mossbank {

/// A program without a window to choose in.
class NullApplicationChooser final : public ApplicationChooser {
public:
    explicit NullApplicationChooser(QString reason)
        : m_reason(std::move(reason))
    {
    }

    Availability availability() const override { return Availability::missing(m_reason); }
    QFuture<std::optional<Application>> choose(const QString&) override
    {
        return QtFuture::makeExceptionalFuture<std::optional<Application>>(Failure(m_reason));
    }

private:
    QString m_reason;
};

} // namespace mossbank
