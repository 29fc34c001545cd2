// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/SessionEvents.h"
#include "MossbankCore/Capture/InactivityMonitor.h"

namespace mossbank {

/// The user leaves and comes back when told.
class FakeSessionEvents final : public SessionEvents {
public:
    std::optional<bool> isOnConsoleNow;

    Availability availability() const override { return {}; }
    NotificationCenter& workspace() override { return m_workspace; }
    NotificationCenter& distributed() override { return m_distributed; }
    std::optional<bool> isOnConsole() const override { return isOnConsoleNow; }

    /// Tells of any of the seven events.
    template <typename Event>
    void tell(Event event) const
    {
        (event.isDistributed() ? m_distributed : m_workspace).post(event.name());
    }

private:
    NotificationCenter m_workspace;
    NotificationCenter m_distributed{true};
};

} // namespace mossbank
