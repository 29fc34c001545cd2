// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Library/Memory.h"
#include "MossbankCore/Support/Calendar.h"

#include <QString>

namespace mossbank {

/// A screenshot that was found, with what tells why and where it is.
struct Finding {
    Memory memory;
    /// The line of its text that matches best; empty when the match is elsewhere.
    QString line;
    /// Path of its picture.
    QString picture;
};

/// For people: time, application and title on a line, the matching line and the picture's path
/// each on one below. Ends with a line end.
QString describe(const Finding& finding, const Calendar& calendar);

/// For programs: a JSON object on one line. Ends with a line end.
QString toJson(const Finding& finding, const Calendar& calendar);

} // namespace mossbank
