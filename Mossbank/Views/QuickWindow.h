// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QVariantMap>

#include <memory>

class QQmlEngine;
class QQuickWindow;

namespace mossbank {

/// Makes the window that the component at `path` within this room describes, with the values of its
/// required properties. It need not be visible yet: its size is known when this returns. Throws a
/// Failure when there can be none.
///
/// Threading: the main thread. The engine outlives the window.
std::unique_ptr<QQuickWindow> makeQuickWindow(QQmlEngine& engine, const QString& path,
                                              const QVariantMap& properties);

/// Where the user sees it and types into it.
void bringToFront(QQuickWindow& window);

} // namespace mossbank
