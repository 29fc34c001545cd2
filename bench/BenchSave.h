// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

namespace mossbank {

/// `save --rows N`: how long one save takes in a library of N rows, beside the least that has to
/// be done for it: the same bytes written to a file and synced, and a bare INSERT of the same row
/// into a second database of the same shape and size. Prints one JSON object a line. Returns the
/// exit status.
int benchSave(const QStringList& arguments);

} // namespace mossbank
