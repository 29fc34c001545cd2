// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/WindowClass.h"
#include "Mossbank/Platform/Linux/X11Connection.h"

#include <QList>
#include <QString>

#include <optional>

namespace mossbank {

/// More of a title than anybody reads, and less than a server could choke on.
constexpr quint32 kMaxTitleBytes = 4096;
constexpr quint32 kMaxClassBytes = 1024;
constexpr quint32 kMaxAtomsBytes = 256;

/// The reading of properties. Any of them may be missing, of another type or cut short: that
/// reads as empty.
WindowClass readClass(const xcb_get_property_reply_t* reply);
QString readText(const X11Connection& connection, const xcb_get_property_reply_t* reply);
QList<quint32> readNumbers(const xcb_get_property_reply_t* reply);
std::optional<quint32> readNumber(const xcb_get_property_reply_t* reply);

} // namespace mossbank
