// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFuture>
#include <QPromise>
#include <QRunnable>
#include <QThreadPool>

#include <exception>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

namespace mossbank {

/// One thread that does what it is given, one thing after the other, in the order given.
///
/// Threading: `run` from any thread. Do not wait for a future of this queue inside its own work:
/// it would wait for itself.
/// Errors: what the work throws comes out of the future.
class SerialQueue {
public:
    explicit SerialQueue(const QString& name);
    /// Finishes what was given so far, then ends the thread.
    ~SerialQueue();
    Q_DISABLE_COPY_MOVE(SerialQueue)

    /// Does `work` in its turn. The future holds its result, or what it threw.
    template <typename Work>
    [[nodiscard]] auto run(Work&& work)
    {
        auto task = std::make_unique<Task<std::decay_t<Work>>>(std::forward<Work>(work));
        auto future = task->future();
        m_thread.start(task.release());
        return future;
    }

private:
    /// One thing to do. Not QtConcurrent's task: whoever waits for the result of one of those
    /// takes it out of the queue and does it himself, out of turn and on a thread of his own.
    template <typename Work>
    class Task final : public QRunnable {
    public:
        using Result = std::invoke_result_t<Work&>;

        explicit Task(Work work)
            : m_work(std::move(work))
        {
            m_promise.start();
        }

        QFuture<Result> future() { return m_promise.future(); }

        void run() override
        {
            try {
                if constexpr (std::is_void_v<Result>)
                    std::invoke(m_work);
                else
                    m_promise.addResult(std::invoke(m_work));
            } catch (...) {
                m_promise.setException(std::current_exception());
            }
            m_promise.finish();
        }

    private:
        Work m_work;
        QPromise<Result> m_promise;
    };

    QThreadPool m_thread;
};

} // namespace mossbank
