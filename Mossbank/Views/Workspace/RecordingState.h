// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/Calendar.h"

#include <QString>

#include <optional>

namespace mossbank {

class AppModel;

/// Whether recording is on, put aside or off, in a word beside the switch for it.
struct RecordingState {
    enum class Kind { Off, Paused, Recording };

    Kind kind = Kind::Off;
    /// When a pause ends. Absent where there is none.
    std::optional<Date> until = {};

    static RecordingState of(AppModel& model);

    QString text(const Calendar& calendar) const;
    /// What the switch says.
    QString action() const;

    friend bool operator==(const RecordingState&, const RecordingState&) = default;
};

} // namespace mossbank
