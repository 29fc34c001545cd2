// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/Failure.h"

namespace mossbank {

/// What the core itself finds wrong. Where SQLite is the one complaining, the message is SQLite's
/// own, unadorned.
class StoreError final : public Failure {
public:
    using Failure::Failure;

    void raise() const override { throw *this; }
    StoreError* clone() const override { return new StoreError(*this); }
};

} // namespace mossbank
