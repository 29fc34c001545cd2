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
/// Threading: any thread.
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
    /// It has passed, and whoever was told so has not come back for a good while.
    bool isOverdue() const;

    /// Who is waited for: at first the one that is called.
    enum class Whom { TheCalled, TheUser };
    /// From now on it is this long, for whom is waited for next.
    void beginAnew(Patience patience, Whom whom);
    Whom whom() const;

private:
    void watch(const std::stop_token& ending);

    GCancellable* m_cancellable;
    mutable std::mutex m_mutex;
    std::condition_variable_any m_changed;
    std::chrono::steady_clock::time_point m_end;
    Whom m_whom = Whom::TheCalled;
    /// Last, so that it ends before anything above goes.
    std::jthread m_watcher;
};

} // namespace mossbank
