// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QRect>

namespace mossbank {

/// `lines` in the order in which a person reads them: columns from left to right where a clear
/// gap parts them from top to bottom, within a column row by row from the top. Lines beside each
/// other are a row also where one begins a little higher.
QList<QRect> inReadingOrder(QList<QRect> lines);

} // namespace mossbank
