// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/ScreenState.h"

#include <utility>

namespace mossbank {

/// A desktop that does not tell whether anybody can see the screen.
class NullScreenState final : public ScreenState {
public:
    explicit NullScreenState(QString reason)
        : m_reason(std::move(reason))
    {
    }

    Availability availability() const override { return Availability::missing(m_reason); }
    bool isLocked() const override { return false; }
    bool isMainDisplayAsleep() const override { return false; }

private:
    QString m_reason;
};

} // namespace mossbank
