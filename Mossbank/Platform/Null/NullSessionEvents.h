// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/SessionEvents.h"

#include <QString>

#include <utility>

namespace mossbank {

/// A machine on which nothing tells that the user leaves.
class NullSessionEvents final : public SessionEvents {
public:
    explicit NullSessionEvents(QString reason)
        : m_reason(std::move(reason))
    {
    }

    Availability availability() const override { return Availability::missing(m_reason); }
    NotificationCenter& workspace() override { return m_workspace; }
    NotificationCenter& distributed() override { return m_distributed; }
    std::optional<bool> isOnConsole() const override { return std::nullopt; }

private:
    QString m_reason;
    NotificationCenter m_workspace;
    NotificationCenter m_distributed{true};
};

} // namespace mossbank
