// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/Cancellation.h"

#include <QCoreApplication>
#include <QCoroTask>

#include <functional>
#include <memory>

namespace mossbank {

/// A coroutine running in the background, and the hold on it.
///
/// Letting go of the job, by its destruction or by assigning another, cancels it. So whoever has
/// a job as a member has no work outlive it unasked: the work is told, wakes from its sleep, and
/// must touch nothing of its owner from then on.
///
/// Threading: the main thread.
/// Errors: the work throws nothing; what escapes it ends the program.
class Job {
public:
    /// No work.
    Job() = default;
    ~Job() { cancel(); }
    Job(Job&& other) noexcept = default;
    Job& operator=(Job&& other) noexcept;
    Job(const Job&) = delete;
    Job& operator=(const Job&) = delete;

    /// Starts `work(arguments..., cancellation)` on the next turn of the event loop, so that the
    /// caller is done with what it was doing. Work cancelled before then never starts.
    ///
    /// `work` is a coroutine: a free function, or a member function with its object first.
    template <typename Work, typename... Arguments>
    static Job start(Work work, Arguments... arguments)
    {
        Job job;
        job.m_state = std::make_shared<Cancellation::State>();
        const auto begin = [state = job.m_state, work, arguments...] {
            if (state->isRequested)
                state->isRunning = false;
            else
                watch(std::invoke(work, arguments..., Cancellation(state)), state);
        };
        QMetaObject::invokeMethod(QCoreApplication::instance(), begin, Qt::QueuedConnection);
        return job;
    }

    /// Has work go on that has begun, with nobody waiting for it. It looks after its owner itself.
    static void detach(QCoro::Task<> work);

    /// Asks the work to end. What it sleeps on wakes before this returns.
    void cancel();

    /// Whether there is work that has not ended, cancelled or not.
    bool isRunning() const { return m_state && m_state->isRunning; }

private:
    static QCoro::Task<> watch(QCoro::Task<> work, std::shared_ptr<Cancellation::State> state);

    std::shared_ptr<Cancellation::State> m_state;
};

} // namespace mossbank
