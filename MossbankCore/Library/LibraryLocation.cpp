// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/LibraryLocation.h"

#include <QFileInfo>
#include <QStandardPaths>

namespace mossbank {

QString LibraryLocation::library()
{
    const QString support = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (support.isEmpty())
        qFatal("There is no folder for application data.");
    const QString former = support + QStringLiteral("/Burrow");
    if (QFileInfo::exists(former + QStringLiteral("/history.sqlite")))
        return former;
    return support + QStringLiteral("/Mossbank");
}

} // namespace mossbank
