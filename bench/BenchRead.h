// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

namespace mossbank {

/// `read FILE... [--time]`: prints the words in each picture, or how long reading it takes.
/// Returns the exit status.
int benchRead(const QStringList& arguments);

} // namespace mossbank
