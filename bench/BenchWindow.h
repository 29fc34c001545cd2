// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

namespace mossbank {

/// What the main window takes: until it shows a list, while its strip is scrolled and stepped
/// through, and of memory. It needs a display.
int benchWindow(const QStringList& arguments);

} // namespace mossbank
