// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/X11Connection.h"

#include <QObject>
#include <QTimer>

#include <memory>

QT_FORWARD_DECLARE_CLASS(QSocketNotifier)

namespace mossbank {

/// Whether somebody takes in the windows that programs have for icons: a tray by the XEmbed
/// protocol is known by owning a selection.
///
/// It has a connection of its own. A server that goes is tried again for as long as it takes.
///
/// Threading: the main thread. It waits for the server a short while when it connects, and never
/// after that.
class X11TrayWatch : public QObject {
    Q_OBJECT

public:
    explicit X11TrayWatch(QObject* parent = nullptr);
    ~X11TrayWatch() override;

    bool isThere() const { return m_isThere; }

Q_SIGNALS:
    void changed();

private:
    void connectToServer();
    bool isOwned() const;
    void readEvents();
    void setThere(bool isThere);

    std::unique_ptr<X11Connection> m_connection;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_retry;
    bool m_isThere = false;
};

} // namespace mossbank
