// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/SystemClock.h"

#include <QObject>
#include <QTimer>

#include <algorithm>
#include <chrono>

namespace mossbank {

/// How long the thread that it lives on does not come back to its event loop, by a timer of a
/// millisecond. In milliseconds; one more or less is not told apart.
class TurnWatch : public QObject {
public:
    /// Of the longest time between two turns.
    struct Longest {
        double passed = 0;
        /// Of the processor's time, by this thread. Of what it waits for others with it is free.
        double processor = 0;
    };

    TurnWatch()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        connect(&m_timer, &QTimer::timeout, this, [this] { turn(); });
    }

    void start()
    {
        m_longest = {};
        m_last = std::chrono::steady_clock::now();
        m_lastProcessor = processorTimeOfThread();
        m_timer.start(std::chrono::milliseconds(1));
    }

    /// What has passed since the last turn counts as well.
    Longest stop()
    {
        turn();
        m_timer.stop();
        return m_longest;
    }

private:
    using Milliseconds = std::chrono::duration<double, std::milli>;

    void turn()
    {
        const auto now = std::chrono::steady_clock::now();
        const auto processor = processorTimeOfThread();
        m_longest.passed = std::max(m_longest.passed, Milliseconds(now - m_last).count());
        m_longest.processor =
            std::max(m_longest.processor, Milliseconds(processor - m_lastProcessor).count());
        m_last = now;
        m_lastProcessor = processor;
    }

    QTimer m_timer;
    std::chrono::steady_clock::time_point m_last;
    std::chrono::nanoseconds m_lastProcessor{};
    Longest m_longest;
};

} // namespace mossbank
