// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Support/Calendar.h"

#include <QString>
#include <QStringList>

namespace mossbank {

/// What was asked for on the command line.
struct FindRequest {
    enum class Kind { Search, Help, Version, WrongUse };

    Kind kind = Kind::WrongUse;
    /// What to look for. Meant for `Search`.
    HistoryStore::FetchRequest fetch;
    /// One JSON object a line in place of text for people.
    bool asJson = false;
    /// The help, or what is wrong. Empty for the other kinds.
    QString message;

    /// Understands the arguments, the program's name first. Days are those of `calendar`.
    static FindRequest parse(const QStringList& arguments, const Calendar& calendar);
};

/// How to call the program, in one line.
QString usage();

} // namespace mossbank
