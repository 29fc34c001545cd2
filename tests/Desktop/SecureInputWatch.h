// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/SecureInput.h"

#include <QElapsedTimer>
#include <QTest>

namespace mossbank::test {

inline bool becomes(SecureInput& input, bool isActive, int limit = 20'000)
{
    return QTest::qWaitFor([&] { return input.isActive() == isActive; }, limit);
}

/// Whether it comes to be so for longer than it may be only because it is being found out: while
/// the focus goes from one field to the next, nothing has it for a moment.
inline bool settles(SecureInput& input, bool isActive)
{
    constexpr int kPatience = 20'000;
    constexpr int kLongEnough = 2500;
    QElapsedTimer timer;
    timer.start();
    while (!timer.hasExpired(kPatience)) {
        if (becomes(input, isActive) && !becomes(input, !isActive, kLongEnough))
            return true;
    }
    return false;
}

} // namespace mossbank::test
