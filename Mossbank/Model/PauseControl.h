// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace mossbank {

/// What the recorder needs to know of timed pauses, which end by its being started or stopped.
class PauseControl {
public:
    PauseControl() = default;
    virtual ~PauseControl() = default;
    PauseControl(const PauseControl&) = delete;
    PauseControl& operator=(const PauseControl&) = delete;

    virtual bool isPaused() const = 0;
    /// Ends a pause, if there is one, without starting anything.
    virtual void cancelPause() = 0;
};

} // namespace mossbank
