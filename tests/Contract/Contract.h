// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Availability.h"
#include "MossbankCore/Support/Failure.h"

#include <QString>

namespace mossbank::test {

/// The reason that the Null adapters are given.
inline const QString kReason = QStringLiteral("This machine of the tests has none.");

/// What is there needs no reason, and what is not has one.
inline bool isSound(const Availability& availability)
{
    return availability.isAvailable == availability.reason.isEmpty();
}

/// The sentence that `work` fails with. Empty when it does not fail.
template <typename Work>
QString failureOf(Work work)
{
    try {
        work();
    } catch (const Failure& failure) {
        return failure.message();
    }
    return {};
}

} // namespace mossbank::test
