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

/// The same of a text about so many, in the form that the user's language has for that number. The
/// number itself stands for nothing in it.
inline QString localized(const char* english, qsizetype count)
{
    return QCoreApplication::translate("Mossbank", english, nullptr, static_cast<int>(count));
}

} // namespace mossbank
