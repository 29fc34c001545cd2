// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/BusConnection.h"
#include "Mossbank/Platform/Linux/ScreenSaver.h"

#include <QObject>

#include <memory>
#include <vector>

namespace mossbank {

/// The screen savers of desktops. A session has one of them, or none.
///
/// Threading: the main thread. The constructor waits for the first answers, a quarter of a second
/// at most; nothing else waits, and asking costs nothing.
class ScreenSavers : public QObject {
    Q_OBJECT

public:
    explicit ScreenSavers(QObject* parent = nullptr);

    /// Whether there is one.
    bool isThere() const;
    /// Whether one covers the screen.
    bool isActive() const;

Q_SIGNALS:
    void activeChanged();

private:
    BusConnection m_bus;
    std::vector<std::unique_ptr<ScreenSaver>> m_savers;
};

} // namespace mossbank
