// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Ports/Clock.h"

#include <QTimer>

#include <chrono>
#include <memory>
#include <unordered_map>

namespace mossbank {

/// The processor time that the calling thread has taken so far.
std::chrono::nanoseconds processorTimeOfThread();

/// The machine's own clock. Sleep is counted on the monotonic clock by the event loop's timers;
/// on Linux that clock stands still while the machine is suspended.
///
/// Threading: see `Clock`; sleeping needs a running event loop.
class SystemClock final : public Clock {
public:
    Date now() const override;

protected:
    Alarm setAlarm(double seconds, std::function<void()> ring) override;
    void clearAlarm(Alarm alarm) override;

private:
    std::unordered_map<Alarm, std::unique_ptr<QTimer>> m_timers;
    Alarm m_lastAlarm = 0;
};

} // namespace mossbank
