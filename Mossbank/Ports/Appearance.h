// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace mossbank {

/// Whether the windows of this program are light or dark.
///
/// Threading: the main thread.
/// Errors: none.
class Appearance {
public:
    enum class Mode {
        /// As the desktop has it, also when that changes.
        System,
        Light,
        Dark,
    };

    Appearance() = default;
    virtual ~Appearance() = default;
    Appearance(const Appearance&) = delete;
    Appearance& operator=(const Appearance&) = delete;

    /// From now on, for the windows that are open as well.
    virtual void apply(Mode mode) = 0;
};

} // namespace mossbank
