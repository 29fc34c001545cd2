// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

namespace mossbank {

/// How long a picture for a capture pass takes, against a bare grab of the root through shared
/// memory on the same server. Needs a DISPLAY; opens five windows, two of them left out. Prints one
/// line of JSON. `arguments`: the number of rounds, 300 unless given. Not 0 when it cannot run.
int benchGrab(const QStringList& arguments);

} // namespace mossbank
