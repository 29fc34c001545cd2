// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/X11Connection.h"

#include <memory>
#include <optional>

namespace mossbank {

/// Whether the displays of the X server are off or blanked, or there are none. Servers without DPMS
/// are ordinary.
///
/// Threading: one thread. Waits for the server a short while only.
class X11DisplayPower {
public:
    X11DisplayPower();
    ~X11DisplayPower();
    Q_DISABLE_COPY_MOVE(X11DisplayPower)

    /// False where nothing says so. Absent when the server does not answer.
    std::optional<bool> isAsleep();

    /// Whether displays are off by what DPMS says of itself: a state that is switched off says
    /// nothing, whatever level stands beside it.
    static bool isOffBy(bool isEnabled, quint16 level);

private:
    bool isOff() const;
    bool isBlanked() const;
    bool areNone() const;

    /// Absent while there is no server.
    std::unique_ptr<X11Connection> m_connection;
};

} // namespace mossbank
