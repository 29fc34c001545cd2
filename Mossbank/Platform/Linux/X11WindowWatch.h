// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/X11Connection.h"

#include <QObject>
#include <QTimer>

#include <memory>

QT_FORWARD_DECLARE_CLASS(QSocketNotifier)

namespace mossbank {

/// Tells when windows have come, gone or moved.
///
/// It has a connection of its own, and asks the server for nothing. A server that goes is tried
/// again for as long as it takes.
///
/// Threading: the main thread.
class X11WindowWatch : public QObject {
    Q_OBJECT

public:
    explicit X11WindowWatch(QObject* parent = nullptr);
    ~X11WindowWatch() override;

    /// Milliseconds from a change until it is told. All that changes meanwhile is told with it: a
    /// window that is dragged moves with each step of the pointer.
    static constexpr int kDelay = 200;

Q_SIGNALS:
    void changed();

private:
    void connectToServer();
    void readEvents();

    std::unique_ptr<X11Connection> m_connection;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_telling;
    QTimer m_retry;
};

} // namespace mossbank
