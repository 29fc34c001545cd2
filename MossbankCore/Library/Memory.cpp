// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/Memory.h"

namespace mossbank {

bool Memory::isWithin(const std::optional<Date>& day, const std::optional<QString>& app,
                      const Calendar& calendar) const
{
    if (app && *app != appName)
        return false;
    if (!day)
        return true;
    const auto interval = calendar.dateInterval(Calendar::Component::Day, *day);
    return !interval || (interval->start <= timestamp && timestamp <= interval->end);
}

bool isValidFilename(const QString& filename)
{
    return !filename.isEmpty() && filename != QLatin1StringView(".") &&
           filename != QLatin1StringView("..") && !filename.contains(u'/') &&
           !filename.contains(QChar(QChar::Null));
}

} // namespace mossbank
