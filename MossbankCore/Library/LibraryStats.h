// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/Date.h"

#include <QHash>
#include <QMap>
#include <QString>
#include <QStringList>

namespace mossbank {

/// The summary of a library.
struct LibraryStats {
    /// Number of screenshots.
    qsizetype count = 0;
    /// Sum of their sizes on disk.
    qint64 bytes = 0;
    /// Every application name that occurs, ascending.
    QStringList apps;
    /// Screenshots a day, by the day's first moment.
    QMap<Date, qsizetype> days;
    /// For each application name one identity that it was seen under.
    QHash<QString, QString> bundles;

    friend bool operator==(const LibraryStats&, const LibraryStats&) = default;
};

} // namespace mossbank
