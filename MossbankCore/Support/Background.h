// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/PoolTask.h"

namespace mossbank {

/// Has the calling thread, and it alone, give way to everything else on the machine from now on.
void giveWay();

/// Does `work` on a pool, giving way to whatever the user is doing: a screenshot that is read a
/// second later is no loss, a stutter under the user's hands is.
///
/// Threading: any thread.
/// Errors: what the work throws comes out of the future.
template <typename Work>
[[nodiscard]] auto inBackground(QThreadPool& pool, Work work)
{
    auto givingWay = [work = std::move(work)]() mutable {
        giveWay();
        return work();
    };
    return PoolTask<std::decay_t<decltype(givingWay)>>::start(pool, std::move(givingWay));
}

/// The same on the global pool.
template <typename Work>
[[nodiscard]] auto inBackground(Work work)
{
    return inBackground(*QThreadPool::globalInstance(), std::move(work));
}

/// The threads for what the user is waiting for. They give way to nothing, and nothing that may
/// wait stands in their queue.
QThreadPool& poolForTheUser();

/// Does `work` in the background at once, because the user is waiting for it.
///
/// Threading: any thread.
/// Errors: what the work throws comes out of the future.
template <typename Work>
[[nodiscard]] auto atOnce(Work work)
{
    return PoolTask<Work>::start(poolForTheUser(), std::move(work));
}

} // namespace mossbank
