// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Library/StoreError.h"

namespace mossbank {

/// What OpenSSL says went wrong. It keeps a list of complaints a thread.
class OpenSslFailure {
public:
    OpenSslFailure() = delete;

    /// Before a call whose complaint will be asked for: what others left is not its.
    static void forgetEarlier();

    /// The complaint of the calls since, in OpenSSL's words; `otherwise` when it gave none.
    static StoreError latest(const QString& otherwise);
};

} // namespace mossbank
