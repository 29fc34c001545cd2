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

/// Whether nobody wants the result of the work any more. Any thread may ask.
using IsUnwanted = std::function<bool()>;

/// One thing for a thread of a pool to do. Not QtConcurrent's task: whoever waits for the result
/// of one of those takes it out of the pool and does it himself, out of turn and on a thread of
/// his own.
///
/// Work that takes an `IsUnwanted` can be given up by cancelling its future: it is not begun then,
/// and can ask on the way. All other work is done whatever becomes of the future.
template <typename Work>
class PoolTask final : public QRunnable {
public:
    static constexpr bool kCanBeGivenUp = std::is_invocable_v<Work&, IsUnwanted>;
    using Result = typename std::conditional_t<kCanBeGivenUp, std::invoke_result<Work&, IsUnwanted>,
                                               std::invoke_result<Work&>>::type;

    /// Has `pool` do `work`. The future holds its result, or what it threw.
    [[nodiscard]] static QFuture<Result> start(QThreadPool& pool, Work work)
    {
        auto task = std::unique_ptr<PoolTask>(new PoolTask(std::move(work)));
        QFuture<Result> future = task->m_promise.future();
        pool.start(task.release());
        return future;
    }

    void run() override
    {
        try {
            if constexpr (kCanBeGivenUp) {
                const IsUnwanted isUnwanted = [this] {
                    return m_promise.isCanceled();
                };
                if (!isUnwanted())
                    m_promise.addResult(std::invoke(m_work, isUnwanted));
            } else if constexpr (std::is_void_v<Result>) {
                std::invoke(m_work);
            } else {
                m_promise.addResult(std::invoke(m_work));
            }
        } catch (...) {
            m_promise.setException(std::current_exception());
        }
        m_promise.finish();
    }

private:
    explicit PoolTask(Work work)
        : m_work(std::move(work))
    {
        m_promise.start();
    }

    Work m_work;
    QPromise<Result> m_promise;
};

} // namespace mossbank
