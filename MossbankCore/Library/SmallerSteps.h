// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Library/Database.h"

#include <QString>

namespace mossbank {

/// A match expression that finds the same, and can be given up sooner.
///
/// FTS5 brings all that begins with a letter together before it tells the first match. That takes
/// longest where it is most, and cannot be interrupted in its last part. Asked for by its first
/// two letters, each beginning that the index holds by itself, the same is found in many small
/// steps, and sooner.
///
/// Letters that are not Latin stay as they are: the index holds a letter without its marks, and
/// which those are is certain for these alone. So does what an index without its list of words
/// cannot tell.
///
/// Threading: the database's.
/// Errors: StoreError with SQLite's message.
QString inSmallerSteps(Database& database, const QString& expression);

} // namespace mossbank
