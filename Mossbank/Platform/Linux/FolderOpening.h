// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFuture>
#include <QString>

namespace mossbank {

/// Has a folder opened by the program that the user has chosen for folders, which goes on when
/// this one ends.
///
/// Threading: any thread; nothing waits. It is done on a thread of its own, which can be left
/// behind: starting a program may ask the session bus, and that may have stopped.
/// Errors: the future is why it is not opened, in words for the user that are no sentence yet.
/// Empty when it is being opened.
QFuture<QString> openWithDefault(const QString& folder);

} // namespace mossbank
