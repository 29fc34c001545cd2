// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace mossbank {

/// What a window says of the program that made it.
struct WindowClass {
    QString instance;
    QString name;
    /// The desktop file that it gives as its own. Few do, but those that do are right.
    QString desktopFile = {};

    bool isEmpty() const { return instance.isEmpty() && name.isEmpty(); }

    friend bool operator==(const WindowClass&, const WindowClass&) = default;
};

} // namespace mossbank
