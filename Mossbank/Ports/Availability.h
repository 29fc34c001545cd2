// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace mossbank {

/// Whether a port can do its work on this machine, and if not, why: a sentence for the user.
struct Availability {
    bool isAvailable = true;
    /// Empty when available.
    QString reason = {};

    static Availability missing(const QString& reason) { return {false, reason}; }

    friend bool operator==(const Availability&, const Availability&) = default;
};

} // namespace mossbank
