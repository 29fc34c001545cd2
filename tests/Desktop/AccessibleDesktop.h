// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/Desktop/VirtualDesktop.h"

#include <QTemporaryDir>

#include <memory>
#include <optional>

namespace mossbank::test {

/// A virtual desktop with a session bus, which starts the accessibility bus when that is wanted.
/// DBUS_SESSION_BUS_ADDRESS and XDG_RUNTIME_DIR name it while it lives.
class AccessibleDesktop {
public:
    struct Options {
        bool hasSession = true;
        /// Whether at-spi2-core is installed on it.
        bool hasAccessibility = true;
        /// Whether programs are to tell what is in their windows.
        bool isSwitchedOn = true;
    };

    AccessibleDesktop()
        : AccessibleDesktop(Options{})
    {
    }
    explicit AccessibleDesktop(const Options& options);
    /// Ends all that was started on it.
    ~AccessibleDesktop();
    Q_DISABLE_COPY_MOVE(AccessibleDesktop)

    /// Why it could not be set up, or a program not be started. Empty when all went well.
    QString problem() const;

    /// The address of the session bus. Empty when there is none.
    static QString sessionBus() { return qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"); }

    /// Starts a program. Its process, or 0.
    qint64 start(const QString& program, const QStringList& arguments, const QString& package);
    qint64 startChromium(const QStringList& arguments);
    qint64 startFirefox(const QStringList& arguments);
    /// Where a browser finds this page, which stands until the next.
    QString page(const QString& content);
    /// Presses keys in the window that has the focus, as xdotool names them.
    bool press(const QStringList& keys);
    /// Types a text there.
    bool type(const QString& text);
    /// Waits for a window with this in its title and brings it to the front. Whether it is there.
    bool bringToFront(const QString& title);

    qint64 serverProcess() const { return m_desktop->serverProcess(); }

    /// Switches the telling of programs on or off.
    bool switchTelling(bool isOn);
    bool isTelling() const;

    /// Ends the accessibility bus the hard way. Whether there was one.
    bool killAccessibilityBus();

    /// Ends everything. The processes that would not go, which are killed.
    QStringList end();

private:
    bool startSession(const Options& options);
    QStringList processes() const;
    QString file(const QString& name) const { return m_folder.filePath(name); }

    QTemporaryDir m_folder;
    std::unique_ptr<VirtualDesktop> m_desktop;
    QProcess m_session;
    QByteArray m_previousBus;
    QByteArray m_previousRuntime;
    QString m_problem;
    std::vector<std::unique_ptr<QProcess>> m_programs;
};

} // namespace mossbank::test
