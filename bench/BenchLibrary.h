// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

namespace mossbank {

/// `library --rows N [--keep DIR]`: what is asked of a library of N screenshots and done to it,
/// each beside the plain form of the same where there is one. The library is made first, which
/// takes minutes for a large one, or found in DIR, where an earlier run left it. Prints one JSON
/// object a line. Returns the exit status.
int benchLibrary(const QStringList& arguments);

} // namespace mossbank
