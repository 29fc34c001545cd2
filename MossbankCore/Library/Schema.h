// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace mossbank {

class Database;

/// The shape of the history database and how older ones come to it. docs/formats.md describes
/// the tables; `user_version` counts the shapes.
///
/// Threading: that of the database.
class Schema {
public:
    Schema() = delete;

    /// What a store opened for writing always has.
    static constexpr int kVersion = 5;
    /// The first with `title` and `link`, and the first whose search table holds them.
    static constexpr int kFirstWithTitles = 3;

    /// Sets the connection up and makes the first table. Runs at every open, on a database of
    /// any version. Throws StoreError.
    static void prepare(Database& database);

    /// Runs every migration above the database's version, each in a transaction of its own
    /// together with its number. Throws StoreError from the first that fails; that one has left
    /// no trace, and the next open tries again.
    static void upgrade(Database& database);

    /// Builds the search index anew where a newer SQLite has left it in a form that this one does
    /// not read, as those from 3.42 on do once they have taken words out of it. Throws StoreError.
    static void makeIndexReadable(Database& database);

    /// The database's `user_version`, and 0 when it has none to tell. Never fails.
    static int userVersion(Database& database);

    /// The SQL expression for the number of the quarter of an hour since 1970 that the time given
    /// by the SQL expression `t` falls in, rounded down for times before 1970 too.
    static QString slot(const QString& t);
};

} // namespace mossbank
