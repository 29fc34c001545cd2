// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

namespace mossbank {

/// The program's own C++ files below `folder`, as paths relative to it, sorted: those that git
/// tracks or would track, and where there is no git all that stand there. Folders of other
/// people's code and of builds are left out.
QStringList sourceFiles(const QString& folder);
/// Those of QML, in the same way.
QStringList viewFiles(const QString& folder);

} // namespace mossbank
