// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/BusLink.h"

#include <QTimer>

#include <memory>

namespace mossbank {

/// Whether something on the session bus shows the icons of programs: a host of status notifiers,
/// told of by their watcher. Both come and go with the panels of the desktop.
///
/// Threading: the main thread. Nothing waits.
/// Owns: itself while it waits for an answer, so that it may be let go at any time.
class StatusNotifierWatch final : public QObject,
                                  public std::enable_shared_from_this<StatusNotifierWatch> {
    Q_OBJECT

public:
    enum class Host {
        /// It has not been told yet.
        Unknown,
        None,
        There,
    };

    StatusNotifierWatch();

    void start();
    /// Tells nothing any more.
    void stop();

    Host host() const { return m_host; }

Q_SIGNALS:
    void changed();

private:
    Q_SLOT void hear(const QDBusMessage& message);

    QCoro::Task<> look();
    QCoro::Task<bool> connectToBus();
    QCoro::Task<Host> ask();
    void lookAgainLater();
    void setHost(Host host);

    BusLink m_bus;
    QTimer m_again;
    int m_attempts = 0;
    bool m_isLooking = false;
    /// Something was told while it was looking.
    bool m_hasHeard = false;
    bool m_isStopped = false;
    Host m_host = Host::Unknown;
};

} // namespace mossbank
