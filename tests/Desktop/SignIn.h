// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/Desktop/AccessibleDesktop.h"

namespace mossbank::test {

/// The kinds of programs with a window called "Sign in": a name, which has the focus, and a
/// password after it. One row of a table each, in a column "kind".
void addSignInKinds();

/// Starts one and brings its window to the front. Its process, or 0.
qint64 openSignIn(AccessibleDesktop& desktop, const QString& kind);

/// The title that its window has on the screen.
QString titleOfSignIn(const QString& kind);

} // namespace mossbank::test
