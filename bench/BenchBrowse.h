// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

namespace mossbank {

/// `browse [--rows N [--keep DIR]]`: what looking back at a day of 20,000 screenshots of 2 KB of
/// text takes: its stretches of work, the marks of a search, a step of its strip; and where N is
/// given, listing such a day and searching, from a library of N screenshots, which is made first or
/// found in DIR. Each beside the least that has to be done with the same data. Prints one JSON
/// object a line and says which bounds are exceeded. Returns the exit status.
int benchBrowse(const QStringList& arguments);

} // namespace mossbank
