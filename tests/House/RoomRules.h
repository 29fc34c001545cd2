// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

namespace mossbank {

/// What breaks the order of the house in one file, each as "path:line: what". `path` is relative
/// to the source tree and says which room the file is in.
QStringList violations(const QString& path, const QString& source);

/// What breaks the order of the house in the source tree at `folder`.
QStringList violationsBelow(const QString& folder);

} // namespace mossbank
