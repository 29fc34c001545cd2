// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Support/Job.h"

#include "MossbankCore/Support/Failure.h"

#include <exception>
#include <utility>

namespace mossbank {

Job& Job::operator=(Job&& other) noexcept
{
    if (this != &other) {
        // The old work wakes inside cancel(), and must find the new job in its place already.
        Job old;
        old.m_state = std::exchange(m_state, std::exchange(other.m_state, nullptr));
        old.cancel();
    }
    return *this;
}

void Job::cancel()
{
    if (!m_state || m_state->isRequested)
        return;
    m_state->isRequested = true;
    if (const auto wake = std::exchange(m_state->wake, nullptr))
        wake();
}

void Job::detach(QCoro::Task<> work)
{
    watch(std::move(work), std::make_shared<Cancellation::State>());
}

QCoro::Task<> Job::watch(QCoro::Task<> work, std::shared_ptr<Cancellation::State> state)
{
    try {
        co_await work;
    } catch (...) {
        qFatal("A background job let a failure escape: %s",
               qPrintable(describe(std::current_exception())));
    }
    state->isRunning = false;
}

} // namespace mossbank
