// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/QuitGuard.h"

#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Model/Recorder.h"
#include "Mossbank/Ports/QuitQuestion.h"
#include "MossbankCore/Ports/Clock.h"
#include "MossbankCore/Support/Awaited.h"
#include "MossbankCore/Support/Failure.h"

#include <utility>

namespace mossbank {

QuitGuard::QuitGuard(Surroundings surroundings, Recorder& recorder, QObject* parent)
    : QObject(parent)
    , m_around(std::move(surroundings))
    , m_recorder(recorder)
{
}

QuitGuard::~QuitGuard() = default;

void QuitGuard::expectQuit()
{
    // The announcement of an end that was called off again must not wave through a later one.
    constexpr double kUntilForgotten = 60;
    m_quitExpectedUntil = m_around.clock.now() + kUntilForgotten;
}

bool QuitGuard::isQuitExpected() const
{
    return m_quitExpectedUntil && m_around.clock.now() < *m_quitExpectedUntil;
}

void QuitGuard::quit(Cause cause)
{
    if (m_isTerminating)
        return;
    // What is stored of a pause or a relaunch is for the start that follows.
    if (isQuitExpected() || cause == Cause::Session)
        terminate();
    else if (cause == Cause::User && m_recorder.isRecording())
        ask();
    else
        terminateByUser();
}

void QuitGuard::ask()
{
    if (m_question.isRunning()) {
        // It is shown again, and the one that waits for the answer gets it.
        if (m_isAsked)
            m_around.quitQuestion.isQuitMeant();
        return;
    }
    m_question = Job::start(&QuitGuard::question, this);
}

QCoro::Task<> QuitGuard::question(Cancellation cancellation)
{
    bool isMeant = true;
    m_isAsked = true;
    try {
        isMeant = co_await awaited(m_around.quitQuestion.isQuitMeant());
    } catch (const Failure&) {
        // Nobody can be asked. Whoever wants an end and is refused one has no other way.
        isMeant = true;
    }
    if (cancellation.isRequested())
        co_return;
    m_isAsked = false;
    if (isMeant)
        terminateByUser();
}

void QuitGuard::terminateByUser()
{
    // With the sample library this does nothing.
    m_around.preferences.removePausedUntil();
    m_around.preferences.removeRecordsAfterRelaunch();
    terminate();
}

void QuitGuard::terminate()
{
    m_isTerminating = true;
    m_question = Job();
    Q_EMIT terminates();
}

} // namespace mossbank
