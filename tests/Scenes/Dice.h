// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QRandomGenerator>

namespace mossbank::test {

/// Chance that comes out the same for the same seed, run after run.
class Dice {
public:
    explicit Dice(quint32 seed)
        : m_random(seed)
    {
    }

    /// From `least` to `most`, both included.
    int between(int least, int most) { return m_random.bounded(least, most + 1); }

    /// True in `percent` of a hundred throws.
    bool chance(int percent) { return m_random.bounded(100) < percent; }

    template <typename T>
    T pick(const QList<T>& choices)
    {
        return choices[m_random.bounded(choices.size())];
    }

private:
    QRandomGenerator m_random;
};

} // namespace mossbank::test
