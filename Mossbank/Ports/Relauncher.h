// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Availability.h"

namespace mossbank {

/// Starts this program anew, beside itself: what a new permission or a new version needs.
///
/// Threading: the main thread.
/// Errors: `openAnother` throws a Failure.
class Relauncher {
public:
    /// What the one that is started is told: that another is about to end for it.
    static constexpr char16_t kRelaunched[] = u"--relaunched";

    Relauncher() = default;
    virtual ~Relauncher() = default;
    Relauncher(const Relauncher&) = delete;
    Relauncher& operator=(const Relauncher&) = delete;

    virtual Availability availability() const = 0;

    /// Starts another process of this program, which goes on when this one ends. That it has been
    /// started is known when this returns; what becomes of it is not.
    virtual void openAnother() = 0;
};

} // namespace mossbank
