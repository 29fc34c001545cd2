// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/CallLimit.h"

#include <gio/gio.h>

namespace mossbank {

CallLimit::CallLimit(Patience patience)
    : m_cancellable(g_cancellable_new())
    , m_end(std::chrono::steady_clock::now() + patience)
    , m_watcher([this](const std::stop_token& ending) { watch(ending); })
{
}

CallLimit::~CallLimit()
{
    m_watcher.request_stop();
    m_watcher.join();
    g_object_unref(m_cancellable);
}

bool CallLimit::hasPassed() const
{
    return g_cancellable_is_cancelled(m_cancellable);
}

bool CallLimit::isOverdue() const
{
    constexpr std::chrono::seconds kGoodWhile(1);
    const std::scoped_lock lock(m_mutex);
    return hasPassed() && std::chrono::steady_clock::now() > m_end + kGoodWhile;
}

CallLimit::Whom CallLimit::whom() const
{
    const std::scoped_lock lock(m_mutex);
    return m_whom;
}

void CallLimit::beginAnew(Patience patience, Whom whom)
{
    const std::scoped_lock lock(m_mutex);
    m_whom = whom;
    m_end = std::chrono::steady_clock::now() + patience;
    m_changed.notify_all();
}

void CallLimit::watch(const std::stop_token& ending)
{
    std::unique_lock lock(m_mutex);
    while (!ending.stop_requested()) {
        const auto end = m_end;
        const bool isMoved =
            m_changed.wait_until(lock, ending, end, [this, end] { return m_end != end; });
        if (!isMoved && !ending.stop_requested()) {
            lock.unlock();
            g_cancellable_cancel(m_cancellable);
            return;
        }
    }
}

} // namespace mossbank
