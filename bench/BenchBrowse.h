// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

namespace mossbank {

/// `browse`: what looking back at a day of 20,000 screenshots of 2 KB of text takes: its stretches
/// of work, the marks of a search, a step of its strip. Each beside the least that has to be done
/// with the same data. Prints one JSON object a line and says which bounds are exceeded. Returns
/// the exit status.
int benchBrowse(const QStringList& arguments);

} // namespace mossbank
