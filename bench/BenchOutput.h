// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include <cstdio>

namespace mossbank {

/// One line of figures.
inline void printFigures(const QJsonObject& figures)
{
    std::puts(QJsonDocument(figures).toJson(QJsonDocument::Compact).constData());
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
