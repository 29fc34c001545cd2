// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/BusLink.h"
#include "Mossbank/Platform/Linux/PortalValues.h"
#include "Mossbank/Ports/DesktopSettings.h"

#include <QTimer>

#include <chrono>

namespace mossbank {

/// By the settings portal on the session bus, which the desktop may have to start first. What it
/// has told stands until it tells otherwise, also while it is gone.
///
/// Threading: that of its port. Nothing waits: until the portal answers nothing is known.
class PortalSettings final : public DesktopSettings {
    Q_OBJECT

public:
    struct Limits {
        std::chrono::milliseconds bus = std::chrono::seconds(5);
        /// For the portal, which asks others that may have to be started as well.
        std::chrono::milliseconds answer = std::chrono::seconds(30);
        /// Before what was silent is asked again, the first time; then ever longer.
        std::chrono::milliseconds again = std::chrono::milliseconds(500);
    };

    /// Begins to ask.
    PortalSettings()
        : PortalSettings(Limits())
    {
    }
    explicit PortalSettings(const Limits& limits);
    ~PortalSettings() override;

    Availability availability() const override;
    ColourScheme colourScheme() const override { return m_colourScheme; }
    bool reducesMotion() const override { return m_reducesMotion; }

private:
    Q_SLOT void hearOwner(const QDBusMessage& message);
    Q_SLOT void hearChange(const QDBusMessage& message);

    QCoro::Task<> listen();
    QCoro::Task<bool> subscribe();
    QCoro::Task<> ask();
    void take(const QDBusMessage& answer);
    void tellWhatIsNew();
    void tryAgainLater();

    Limits m_limits;
    BusLink m_bus;
    QTimer m_again;
    int m_attempts = 0;
    bool m_isConnecting = false;
    bool m_isAsking = false;
    /// Something may have changed since the question that is under way.
    bool m_isToBeAsked = false;
    /// Why nothing is known. Empty while nothing says so.
    QString m_reason;
    PortalValues m_values;
    ColourScheme m_colourScheme = ColourScheme::NoPreference;
    bool m_reducesMotion = false;
};

} // namespace mossbank
