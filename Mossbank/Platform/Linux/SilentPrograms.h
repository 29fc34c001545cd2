// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QHash>
#include <QString>

#include <chrono>

namespace mossbank {

/// The programs on a bus that did not answer, and for how long each is left alone: one that has
/// stopped would have every question to it waited for in vain.
///
/// Threading: one thread at a time.
class SilentPrograms {
public:
    using Instant = std::chrono::steady_clock::time_point;

    /// A second at first, and twice as long each time that it stays silent again.
    static constexpr std::chrono::seconds kFirst{1};
    static constexpr std::chrono::seconds kLongest{16};

    bool isLeftAlone(const QString& service, Instant now) const;
    void keptSilent(const QString& service, Instant now);
    void answered(const QString& service);
    void clear() { m_silent.clear(); }

private:
    struct Silence {
        Instant until;
        std::chrono::seconds length;
    };
    QHash<QString, Silence> m_silent;
};

} // namespace mossbank
