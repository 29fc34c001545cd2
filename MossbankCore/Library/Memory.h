// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/Calendar.h"
#include "MossbankCore/Support/Date.h"

#include <QString>

#include <optional>

namespace mossbank {

/// One saved screenshot, with everything known about it but its pixels.
struct Memory {
    /// Identity of the record: a random UUID in upper case for what the recorder saves.
    QString id;
    /// The moment of the capture.
    Date timestamp;
    /// Display name of the application in front. The filter by application compares it.
    QString appName;
    /// Identity of that application, empty when none is known.
    QString bundleID;
    /// The words read from the picture. Empty in lists fetched without text.
    QString text;
    /// Name of the picture file, no path; the same whether the picture is sealed or not.
    QString filename;
    /// Size of the picture file as it lies on disk, in bytes.
    qint64 bytes = 0;
    /// Title of the front window, empty when none is known.
    QString title;
    /// Address of the page in a browser, empty when none is known.
    QString link;

    friend bool operator==(const Memory&, const Memory&) = default;

    /// Whether a record just saved belongs in a list of this day and application; an absent one
    /// does not narrow the list.
    ///
    /// Both ends of the day count: a record stamped exactly at the next midnight belongs to the
    /// day before as well, while a query for that day leaves it out. A list on show had better
    /// gain a row too many at midnight than miss what was just saved.
    bool isWithin(const std::optional<Date>& day, const std::optional<QString>& app,
                  const Calendar& calendar) const;
};

/// Whether `filename` may name a picture: one path component that stays in its folder.
bool isValidFilename(const QString& filename);

} // namespace mossbank
