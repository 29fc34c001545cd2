// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/PoolTask.h"

#include <QString>

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

    /// Does `work` in its turn. The future holds its result, or what it threw. Work that takes an
    /// `IsUnwanted` is given up when its future is cancelled.
    template <typename Work>
    [[nodiscard]] auto run(Work&& work)
    {
        return PoolTask<std::decay_t<Work>>::start(m_thread, std::forward<Work>(work));
    }

private:
    QThreadPool m_thread;
};

} // namespace mossbank
