// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <cstdint>

namespace mossbank {

/// What a step of a capture pass finds: that the pass goes on, or how it ends.
class CaptureVerdict {
public:
    enum class Kind : std::uint8_t { GoOn, Silent, Skip, Locked, NotAllowed, Failed };

    static CaptureVerdict goOn() { return {Kind::GoOn, {}}; }
    static CaptureVerdict silently() { return {Kind::Silent, {}}; }
    /// With a line in the recorder's status; the schedule goes on.
    static CaptureVerdict skip(const QString& status) { return {Kind::Skip, status}; }
    /// The screen is locked: recording stops and may come back with the user.
    static CaptureVerdict locked() { return {Kind::Locked, {}}; }
    /// The permission to see the screen was withdrawn: recording stops.
    static CaptureVerdict notAllowed() { return {Kind::NotAllowed, {}}; }
    /// Recording stops: trying again and again would only hide it.
    static CaptureVerdict failed(const QString& reason) { return {Kind::Failed, reason}; }

    bool goesOn() const { return kind == Kind::GoOn; }

    Kind kind;
    /// The status, or the reason of a failure.
    QString text;
};

} // namespace mossbank
