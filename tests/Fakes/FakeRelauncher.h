// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Relauncher.h"
#include "MossbankCore/Support/Failure.h"

namespace mossbank {

/// Counts the processes that it would have started.
class FakeRelauncher final : public Relauncher {
public:
    int opened = 0;
    /// When not empty, what it fails with.
    QString failure;

    Availability availability() const override { return {}; }

    void openAnother() override
    {
        if (!failure.isEmpty())
            throw Failure(failure);
        ++opened;
    }
};

} // namespace mossbank
