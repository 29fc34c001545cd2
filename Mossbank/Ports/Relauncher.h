// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace mossbank {

/// Starts another process of this program, which takes over when this one has ended.
///
/// Threading: the main thread.
class Relauncher {
public:
    Relauncher() = default;
    virtual ~Relauncher() = default;
    Relauncher(const Relauncher&) = delete;
    Relauncher& operator=(const Relauncher&) = delete;

    /// Throws a Failure when it could not be started.
    virtual void openAnother() = 0;
};

} // namespace mossbank
