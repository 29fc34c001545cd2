// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/Surroundings.h"
#include "MossbankCore/Support/Date.h"
#include "MossbankCore/Support/Job.h"

#include <QCoroTask>
#include <QObject>

#include <optional>

namespace mossbank {

class Recorder;

/// Stands in the way of an end of the program that was not meant: whoever quits while it is
/// recording is asked. Nobody is asked when the session or the machine ends.
///
/// What the user ends stays ended: then no pause and no recording of this run comes back by itself
/// at the next start.
///
/// Threading: the main thread.
class QuitGuard : public QObject {
    Q_OBJECT

public:
    enum class Cause {
        /// By a menu or a window of this program.
        User,
        /// By the user, where no question makes sense: an interrupt on the terminal.
        Interrupt,
        /// A logout, a restart, a shutdown, or whatever else ends programs unasked.
        Session,
    };

    /// The recorder outlives it.
    QuitGuard(Surroundings surroundings, Recorder& recorder, QObject* parent = nullptr);
    ~QuitGuard() override;

    /// For the next minute an end is expected, and not questioned.
    void expectQuit();
    /// Until when it is.
    const std::optional<Date>& quitExpectedUntil() const { return m_quitExpectedUntil; }

    /// Somebody wants the program to end. `terminates` follows, if that is to be, and only once:
    /// from then on nothing more is asked or stored.
    void quit(Cause cause);

Q_SIGNALS:
    void terminates();

private:
    bool isQuitExpected() const;
    void terminate();
    void ask();
    QCoro::Task<> question(Cancellation cancellation);
    void terminateByUser();

    Surroundings m_around;
    Recorder& m_recorder;
    std::optional<Date> m_quitExpectedUntil;
    bool m_isAsked = false;
    bool m_isTerminating = false;
    /// Last: cancelled before anything above goes.
    Job m_question;
};

} // namespace mossbank
