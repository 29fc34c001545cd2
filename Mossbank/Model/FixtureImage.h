// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QString>
#include <QStringList>

#include <optional>

namespace mossbank {

/// A picture of a made-up desktop, 1440 by 900 pixels: a menu bar of `app`, and a window with
/// `title` that shows `lines`. Absent where nothing can be painted,
/// as without a QGuiApplication, which has the fonts.
///
/// Threading: any thread.
std::optional<QImage> fixtureImage(const QString& app, const QString& title,
                                   const QStringList& lines);

} // namespace mossbank
