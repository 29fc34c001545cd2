// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

using GCancellable = struct _GCancellable;

namespace mossbank {

/// Puts an end to calls of GLib's that take too long: whoever is asked may have stopped, and some
/// of these calls would wait for ever.
///
/// Threading: made, asked and destroyed on one thread, the one that calls.
class CallLimit {
public:
    using Patience = std::chrono::milliseconds;

    explicit CallLimit(Patience patience);
    ~CallLimit();
    CallLimit(const CallLimit&) = delete;
    CallLimit& operator=(const CallLimit&) = delete;

    /// For the calls. Cancelled when the patience is at its end.
    GCancellable* cancellable() const { return m_cancellable; }
    bool hasPassed() const;

    /// From now on it is this long, for whoever is waited for next.
    void beginAnew(Patience patience);

private:
    void watch(const std::stop_token& ending);

    GCancellable* m_cancellable;
    std::mutex m_mutex;
    std::condition_variable_any m_changed;
    std::chrono::steady_clock::time_point m_end;
    /// Last, so that it ends before anything above goes.
    std::jthread m_watcher;
};

} // namespace mossbank
