// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <vector>

namespace mossbank {

/// How long `work` takes.
template <typename Work>
double milliseconds(Work&& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

/// The time that a part of the times, 0 to 1, do not exceed.
inline double quantile(std::vector<double> times, double part)
{
    std::ranges::sort(times);
    return times.at(static_cast<std::size_t>(part * static_cast<double>(times.size() - 1)));
}

inline double median(const std::vector<double>& times)
{
    constexpr double kHalf = 0.5;
    return quantile(times, kHalf);
}

/// To the thousandth, for showing.
inline double rounded(double value)
{
    constexpr double kThousand = 1000;
    return std::round(value * kThousand) / kThousand;
}

/// The times of two works that are compared.
struct PairedTimes {
    std::vector<double> times;
    std::vector<double> baseline;
    double ratio() const { return median(times) / median(baseline); }
};

/// Times both so often, given the number of the round. Each goes first in half of the rounds: what
/// one leaves to the disk or the caches, the other meets.
template <typename Work, typename Baseline>
PairedTimes sideBySide(int rounds, Work&& work, Baseline&& baseline)
{
    PairedTimes paired;
    for (int round = 0; round < rounds; ++round) {
        const auto first = [&] {
            paired.times.push_back(milliseconds([&] { work(round); }));
        };
        const auto second = [&] {
            paired.baseline.push_back(milliseconds([&] { baseline(round); }));
        };
        if (round % 2 == 0) {
            first();
            second();
        } else {
            second();
            first();
        }
    }
    return paired;
}

} // namespace mossbank
