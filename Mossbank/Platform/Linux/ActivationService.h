// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/ApplicationObject.h"
#include "Mossbank/Platform/Linux/BusLink.h"

#include <QTimer>

#include <memory>

namespace mossbank {

/// The program as others find it on the session bus: under the name that is its identity, at the
/// path that follows from that. It waits in line where another has the name, as one with another
/// library does, and takes it anew when the bus has gone and comes back.
///
/// Threading: the main thread. Nothing waits.
/// Owns: itself while it waits for an answer, so that it may be let go at any time.
class ActivationService final : public QObject,
                                public std::enable_shared_from_this<ActivationService> {
    Q_OBJECT

public:
    explicit ActivationService(QString identity);

    void start();
    /// Gives everything back and tells nothing any more.
    void stop();

    /// Why it cannot be found: a sentence for the user. Empty when it can, or is on its way there.
    const QString& whyUnreachable() const { return m_reason; }

Q_SIGNALS:
    void activated();
    void actionRequested(const QString& action);

private:
    QCoro::Task<> hold();
    QCoro::Task<QString> takeName();
    void tryAgainLater();
    void rest();

    QString m_identity;
    BusLink m_bus;
    ApplicationObject m_object;
    QTimer m_again;
    int m_attempts = 0;
    bool m_isAsking = false;
    bool m_isStopped = false;
    QString m_reason;
};

/// Where a program of this identity answers.
QString applicationPath(const QString& identity);

/// What the bus answers when a name is asked for, as far as it is given or will be.
inline constexpr quint32 kNameIsOurs = 1;
inline constexpr quint32 kNameIsWaitedFor = 2;

} // namespace mossbank
