// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/BusConnection.h"
#include "tests/Desktop/RunningMossbank.h"
#include "tests/Desktop/TestBus.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace mossbank::test {

/// The real program with windows, on a desktop with a terminal in it and a session bus of their
/// own: called as the desktop calls it, and looked at as its user does.
class CalledMossbank {
public:
    CalledMossbank();
    ~CalledMossbank();
    Q_DISABLE_COPY_MOVE(CalledMossbank)

    /// Why it could not be set up. Empty when all went well.
    QString problem() const;

    RunningMossbank& mossbank() { return *m_mossbank; }
    VirtualDesktop& desktop() { return *m_desktop; }
    TestBus& bus() { return *m_bus; }

    /// Has it record every second, whether the screen has changed or not, unless `choices` say
    /// otherwise. Before `start`.
    void choose(QMap<QString, QString> choices = {});
    /// Starts it, and waits until it has said this.
    bool start(const QString& line, const QStringList& arguments = {});
    /// Waits until it is heard of on the bus, as this process.
    bool waitUntilFound();

    /// Asks it for an action, as the desktop's menus do. False when it does not answer.
    bool ask(const QString& action);
    /// The calls of its interface that have come over the bus, by their names, from `listen` on.
    bool listen();
    QStringList calls();

    /// Its window of this title, once it is there, or 0.
    quint32 window(const QString& title);
    /// How many windows the user sees of it.
    int windows();
    bool waitUntilNoWindow();
    /// Whether this window has the focus, now or soon.
    bool waitUntilActive(quint32 window);
    /// Another window is the one in front.
    bool turnAway();
    /// Presses keys in the window that has the focus.
    bool press(const QString& keys);

    bool waitForAnotherPicture();

private:
    QString tool(const QStringList& arguments);

    std::unique_ptr<VirtualDesktop> m_desktop;
    bool m_hasTerminal = false;
    std::unique_ptr<TestBus> m_bus;
    std::unique_ptr<BusConnection> m_connection;
    QProcess* m_listener = nullptr;
    QString m_heard;
    std::unique_ptr<RunningMossbank> m_mossbank;
};

} // namespace mossbank::test
