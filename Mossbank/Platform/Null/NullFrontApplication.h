// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/FrontApplication.h"

#include <utility>

namespace mossbank {

/// A desktop that does not tell which application is in front.
class NullFrontApplication final : public FrontApplication {
public:
    explicit NullFrontApplication(QString reason)
        : m_reason(std::move(reason))
    {
    }

    Availability availability() const override { return Availability::missing(m_reason); }
    std::optional<Application> current() override { return {}; }

private:
    QString m_reason;
};

} // namespace mossbank
