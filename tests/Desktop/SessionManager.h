// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QProcess>
#include <QString>

namespace mossbank::test {

/// A session manager of X11's old kind, as a process of its own, that one program can join.
class SessionManager {
public:
    SessionManager();
    /// Ends it.
    ~SessionManager();
    Q_DISABLE_COPY_MOVE(SessionManager)

    /// Why it could not be set up. Empty when all went well.
    const QString& problem() const { return m_problem; }
    /// What SESSION_MANAGER is to say.
    const QString& address() const { return m_address; }

    /// "checkpoint": the program saves itself and goes on. "end", "end what all see": it saves
    /// itself for the end of the session. "call off": the end is none. "go on": all have saved.
    /// "die": the program ends.
    void order(const QString& what);
    /// Waits until the program has done something so many times: "registered", "saved", "left".
    bool waitFor(const QString& event, int times = 1);
    /// What the program last said of being started again with the session, as the protocol counts.
    QString restartHint();

    /// Ends it the hard way.
    void kill();

private:
    void listen();

    QProcess m_process;
    QStringList m_events;
    QString m_address;
    QString m_problem;
};

} // namespace mossbank::test
