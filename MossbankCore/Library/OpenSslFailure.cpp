// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/OpenSslFailure.h"

#include <openssl/err.h>

namespace mossbank {

void OpenSslFailure::forgetEarlier()
{
    ERR_clear_error();
}

StoreError OpenSslFailure::latest(const QString& otherwise)
{
    // The first is the cause, those after it its consequences.
    const unsigned long code = ERR_peek_error();
    const char* const reason = code == 0 ? nullptr : ERR_reason_error_string(code);
    const QString message = reason ? QString::fromUtf8(reason) : otherwise;
    ERR_clear_error();
    return StoreError(message);
}

} // namespace mossbank
