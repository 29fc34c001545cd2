// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/LibraryLocation.h"

#include "MossbankCore/Support/UserFolders.h"

#include <QFileInfo>

namespace mossbank {

QString LibraryLocation::library()
{
    const QString support = UserFolders::data();
    const QString former = support + QStringLiteral("/Burrow");
    if (QFileInfo::exists(former + QStringLiteral("/history.sqlite")))
        return former;
    return support + QStringLiteral("/Mossbank");
}

} // namespace mossbank
