// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

namespace mossbank {

/// `start --rows N [--keep DIR]`: how long the real program takes from the start of its process
/// until its library of N screenshots can be used, beside a start that only says its version; and
/// what memory is its own then. The library is made first, or found in DIR. Prints one JSON object
/// a line. Returns the exit status, 1 also when a bound is exceeded.
int benchStart(const QStringList& arguments);

/// `hour [MINUTES]`: the same program's own memory while it records a screen that keeps changing,
/// after the first picture and after an hour of its time, which runs ten times as fast.
int benchHour(const QStringList& arguments);

} // namespace mossbank
