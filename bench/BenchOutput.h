// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bench/BenchTiming.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include <cstdio>
#include <vector>

namespace mossbank {

/// One line of figures.
inline void printFigures(const QJsonObject& figures)
{
    std::puts(QJsonDocument(figures).toJson(QJsonDocument::Compact).constData());
}

/// The same, of what was timed, which `what` tells.
inline void printTimes(QJsonObject what, const std::vector<double>& times)
{
    what.insert(QStringLiteral("median_ms"), rounded(median(times)));
    printFigures(what);
}

/// And of what was timed beside a baseline.
inline void printTimes(QJsonObject what, const PairedTimes& paired)
{
    what.insert(QStringLiteral("baseline_median_ms"), rounded(median(paired.baseline)));
    what.insert(QStringLiteral("ratio"), rounded(paired.ratio()));
    printTimes(what, paired.times);
}

/// Tells what went wrong. The exit status for it.
inline int benchFailed(const QString& reason)
{
    std::fprintf(stderr, "mossbank-bench: %s\n", qPrintable(reason));
    return 1;
}

/// Tells how a benchmark is called. The exit status for it.
inline int benchWrongUse(const char* usage)
{
    std::fprintf(stderr, "Usage: mossbank-bench %s\n", usage);
    return 2;
}

} // namespace mossbank
