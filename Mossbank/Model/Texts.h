// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCoreApplication>
#include <QString>

namespace mossbank {

/// A text for the user in the user's language; the English text is the key to look it up by.
inline QString localized(const char* english)
{
    return QCoreApplication::translate("Mossbank", english);
}

} // namespace mossbank
