// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace mossbank {

/// The question "is this still wanted?", handed by value to work that takes its time. The `Job`
/// that the work belongs to answers it; one that belongs to none is always wanted.
///
/// Threading: the thread of its job.
class Cancellation {
public:
    Cancellation() = default;

    bool isRequested() const { return m_state && m_state->isRequested; }

    /// Has `wake` called, once, when cancellation is requested. Work waits for one thing at a
    /// time, so there is one `wake`: a later one takes its place, and an empty one none.
    void setWake(std::function<void()> wake)
    {
        if (m_state)
            m_state->wake = std::move(wake);
    }

private:
    friend class Job;

    struct State {
        bool isRequested = false;
        bool isRunning = true;
        std::function<void()> wake;
    };

    explicit Cancellation(std::shared_ptr<State> state)
        : m_state(std::move(state))
    {
    }

    std::shared_ptr<State> m_state;
};

} // namespace mossbank
