// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/LoginService.h"
#include "MossbankCore/Support/Failure.h"

#include <utility>

namespace mossbank {

/// A system on which nothing is started at login.
class NullLoginService final : public LoginService {
public:
    explicit NullLoginService(QString reason)
        : m_reason(std::move(reason))
    {
    }

    Availability availability() const override { return Availability::missing(m_reason); }
    Status status() const override { return Status::Unknown; }
    void registerItem() override { throw Failure(m_reason); }
    void unregisterItem() override { throw Failure(m_reason); }
    QString path() const override { return {}; }
    bool isWithoutHome() const override { return true; }

private:
    QString m_reason;
};

} // namespace mossbank
