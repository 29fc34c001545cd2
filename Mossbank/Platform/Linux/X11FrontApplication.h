// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/OwnProgram.h"
#include "Mossbank/Ports/FrontApplication.h"

#include <memory>

QT_FORWARD_DECLARE_CLASS(QSocketNotifier)

namespace mossbank {

/// The application of the window that the window manager calls active.
///
/// It has a connection of its own and waits for the server a short while only: the main thread is
/// not to stand still with a server that does.
class X11FrontApplication final : public FrontApplication {
    Q_OBJECT

public:
    /// Throws a Failure when there is no display.
    X11FrontApplication(std::shared_ptr<ApplicationCatalog> catalog, OwnProgram own);
    ~X11FrontApplication() override;

    Availability availability() const override;
    std::optional<Application> current() override;

private:
    void connectToServer();
    std::optional<Application> ask() const;
    void readEvents();
    void tellOfChange();

    std::shared_ptr<ApplicationCatalog> m_catalog;
    OwnProgram m_own;
    std::unique_ptr<X11Connection> m_connection;
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::optional<Application> m_lastTold;
};

} // namespace mossbank
