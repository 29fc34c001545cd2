// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/Accessible.h"

namespace mossbank {

/// The objects in a window that are in this state. A program that cannot search by itself is
/// walked through, to the first such object and within bounds. Absent when the program does not
/// answer, and when the bounds were too narrow for finding one.
Asked<QList<Accessible>> searchWindow(AccessibilityBus& bus, Accessible window,
                                      AccessibleState state);

/// The first object of this role that shows, by walking, within the same bounds.
Asked<Accessible> walkTo(AccessibilityBus& bus, Accessible window, AccessibleRole role);

/// Which of these windows the object is in. Absent where it is in none.
Asked<Accessible> windowOf(AccessibilityBus& bus, Accessible object, QList<Accessible> windows);

} // namespace mossbank
