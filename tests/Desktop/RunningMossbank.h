// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Library/Memory.h"

#include <QImage>
#include <QList>
#include <QMap>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

#include <functional>
#include <memory>
#include <vector>

namespace mossbank::test {

/// A moment so many seconds from now, as it is written among the choices.
QString inSeconds(int seconds);

/// The real programs with a home of their own.
class RunningMossbank {
public:
    RunningMossbank();
    /// Ends it, if it still runs.
    ~RunningMossbank();
    Q_DISABLE_COPY_MOVE(RunningMossbank)

    /// Writes the user's choices. Before `start`.
    void choose(const QMap<QString, QString>& choices);
    /// The session bus, and with it the keyring, that it finds. None unless told: a test never
    /// meets the keyring of whoever runs it. Before `start`.
    void setSessionBus(const QString& address) { m_sessionBus = address; }
    /// A variable of its environment; one that is null is not there. Before `start`.
    void setVariable(const QString& name, const QString& value) { m_variables[name] = value; }
    /// The folder that it is started in. Before `start`.
    void setWorkingFolder(const QString& path) { m_process.setWorkingDirectory(path); }
    /// What the new process does before the program begins in it. Only what a process may do
    /// between fork and exec.
    void setBeginning(const std::function<void()>& beginning);
    /// It is started as by the user's hand, and opens its window. Before `start`.
    void openWindow() { m_opensWindow = true; }
    /// What is started in its place, as where it has been moved to. Before `start`.
    void setProgram(const QString& path) { m_program = path; }
    /// Starts the program on the display that DISPLAY names, out of sight as the desktop does at
    /// login.
    bool start(const QStringList& arguments = {});
    /// Sends a signal, if it still runs, and waits for the end. The exit status, or -1 when it does
    /// not end.
    int stop(int signal);
    /// Waits until the terminal shows `line` somewhere, so many times.
    bool waitFor(const QString& line, int times = 1);
    /// Waits for the end of a start that is to fail. The exit status, or -1.
    int waitForEnd();

    /// All that it has written to the terminal so far.
    QString terminal();
    qint64 process() const { return m_process.processId(); }
    QString library() const;
    QStringList pictureFiles() const;
    /// Every row of the library with its text.
    QList<Memory> rows() const;

    struct Found {
        int status = -1;
        QString text;
    };
    /// Runs mossbank-find on this library.
    Found find(const QStringList& arguments) const;
    /// Another start of the program with the same home, and with the folder for application data
    /// written another way where that is given.
    Found startAgain(const QString& dataHome = {}) const;
    /// Another start with the same home that is not waited for. Ended by whoever asked for it.
    std::unique_ptr<QProcess> startAnother(const QStringList& arguments = {}) const;
    /// Further starts with the same home, so many at once. Ended by whoever asked for them.
    std::vector<std::unique_ptr<QProcess>> startTogether(int count) const;
    /// The ids of all processes with this home.
    QStringList processes() const;
    /// The folder that all of it lies in.
    QString home() const { return m_home.path(); }
    QString choicesFile() const;
    /// What is written there for one choice. Null where nothing is.
    QString choice(const QString& key) const;

private:
    QProcessEnvironment environment() const;
    Found runToEnd(const QString& program, const QStringList& arguments,
                   const QProcessEnvironment& environment) const;

    QTemporaryDir m_home;
    QString m_program;
    QString m_sessionBus;
    QMap<QString, QString> m_variables;
    bool m_opensWindow = false;
    QProcess m_process;
    QString m_terminal;
};

} // namespace mossbank::test
