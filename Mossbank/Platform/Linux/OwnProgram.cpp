// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/OwnProgram.h"

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

bool isOwn(const X11Owner& owner, const OwnProgram& own)
{
    if (own.process != 0 && owner.process == own.process)
        return true;
    if (!own.executable.isEmpty() && owner.process &&
        executableOf(*owner.process) == own.executable)
        return true;
    const QString shortName = own.bundleID.section(u'.', -1);
    for (const QString& name : {owner.windowClass.instance, owner.windowClass.name}) {
        for (const QString& ownName : {own.bundleID, shortName}) {
            if (!name.isEmpty() && name.compare(ownName, Qt::CaseInsensitive) == 0)
                return true;
        }
    }
    return false;
}

} // namespace

Application applicationOf(const X11Owner& owner, ApplicationCatalog& catalog, const OwnProgram& own)
{
    if (!isOwn(owner, own))
        return catalog.application(owner.windowClass, owner.process);
    return catalog.installed(own.bundleID)
        .value_or(Application{.bundleID = own.bundleID, .name = u"Mossbank"_s});
}

} // namespace mossbank
