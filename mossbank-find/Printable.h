// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace mossbank {

/// Text from a screen, made safe for a terminal and for one line of it.
///
/// A window chooses its own title and a page its own words. Sent to a terminal as they are, escape
/// sequences would be obeyed and signs that turn the direction of writing would show a text that
/// is not there. Tabs and line ends become spaces, all other such signs "\uFFFD".
QString printable(const QString& text);

/// A line of JSON with the same signs escaped, where JSON itself lets them stand.
QString printableJson(const QString& json);

} // namespace mossbank
