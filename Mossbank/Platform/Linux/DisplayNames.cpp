// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/DisplayNames.h"

#include <QScreen>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace mossbank {

QStringList displayNamesOf(const QList<DisplayLabel>& displays)
{
    QStringList names;
    for (const DisplayLabel& display : displays) {
        const auto alike = std::ranges::count(displays, display.model, &DisplayLabel::model);
        if (display.model.isEmpty())
            names.append(display.connector);
        else if (alike == 1)
            names.append(display.model);
        else
            names.append(u"%1 (%2)"_s.arg(display.model, display.connector));
    }
    return names;
}

QStringList displayNamesOf(const QList<QScreen*>& screens)
{
    QList<DisplayLabel> displays;
    for (const QScreen* const screen : screens)
        displays.append({screen->model(), screen->name()});
    return displayNamesOf(displays);
}

} // namespace mossbank
