// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Updates.h"

namespace mossbank {

/// A distributor that answers when the test says.
class FakeUpdates final : public Updates {
public:
    /// How often a check was begun.
    int checks = 0;

    Availability availability() const override { return m_availability; }
    bool canCheckForUpdates() override { return m_availability.isAvailable && !m_isChecking; }

    void checkForUpdates() override
    {
        if (m_isChecking)
            return;
        if (!m_availability.isAvailable) {
            QMetaObject::invokeMethod(
                this, [this] { Q_EMIT checked(UpdateAnswer::failed(m_availability.reason)); },
                Qt::QueuedConnection);
            return;
        }
        ++checks;
        m_isChecking = true;
        Q_EMIT canCheckForUpdatesChanged();
    }

    void setAvailability(const Availability& availability)
    {
        m_availability = availability;
        Q_EMIT canCheckForUpdatesChanged();
    }

    /// Ends the check that is under way.
    void answer(const UpdateAnswer& answer)
    {
        m_isChecking = false;
        Q_EMIT canCheckForUpdatesChanged();
        Q_EMIT checked(answer);
    }

private:
    Availability m_availability;
    bool m_isChecking = false;
};

} // namespace mossbank
