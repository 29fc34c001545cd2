// SPDX-License-Identifier: Apache-2.0
//
// Tests with random input do some rounds of it within the suite, and more by hand:
//
//   MOSSBANK_ROUNDS=5000000 build/dev/tests/Core/Library/VaultFuzzTest
//
// Each tells its seed, with which MOSSBANK_SEED has it do the same once more.
#pragma once

#include <QRandomGenerator>
#include <QtGlobal>

namespace mossbank {

inline int numberFromEnvironment(const char* variable, int otherwise)
{
    bool isNumber = false;
    const int value = qEnvironmentVariableIntValue(variable, &isNumber);
    return isNumber ? value : otherwise;
}

inline int randomRounds(int usually)
{
    return numberFromEnvironment("MOSSBANK_ROUNDS", usually);
}

inline quint32 randomSeed()
{
    const int seed = numberFromEnvironment("MOSSBANK_SEED",
                                           QRandomGenerator::global()->bounded(1, 1'000'000'000));
    qInfo("MOSSBANK_SEED=%d", seed);
    return static_cast<quint32>(seed);
}

} // namespace mossbank
