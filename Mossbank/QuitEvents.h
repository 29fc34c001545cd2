// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

namespace mossbank {

/// Hears what wants to end the program by way of Qt, a menu or the session manager, and leaves the
/// decision to others: on its own Qt would end the event loop with a save under way.
///
/// Threading: the main thread. While there is an application with windows.
class QuitEvents : public QObject {
    Q_OBJECT

public:
    QuitEvents();

Q_SIGNALS:
    /// The session manager ends the program, and with it the session.
    void sessionEnds();
    /// Somebody else does.
    void quits();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace mossbank
