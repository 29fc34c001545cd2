// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Ports/Keychain.h"

#include <utility>

namespace mossbank {

/// No keychain: it fails with the reason rather than finding nothing, which would mean that a key
/// can be made.
class NullKeychain final : public Keychain {
public:
    static constexpr int kUnavailable = 1;

    explicit NullKeychain(QString reason)
        : m_reason(std::move(reason))
    {
    }

    Answer read(const QString&, const QString&) override { return {{kUnavailable, m_reason}}; }
    Status add(const QString&, const QString&, QByteArrayView) override
    {
        return {kUnavailable, m_reason};
    }

private:
    QString m_reason;
};

} // namespace mossbank
