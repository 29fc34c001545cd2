// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

#include <span>

namespace mossbank {

/// Keeps what was deleted from staying in the unused parts of a database's pages.
///
/// SQLite overwrites a row that is deleted where it stands. But as pages fill and part, rows move,
/// and what they leave behind is not overwritten: it stays between the list of a page's cells and
/// the cells, and the deletion that comes later does not know of it. So that part is zeroed
/// whenever a page is written to the database file. SQLite never reads it.
///
/// Threading: any thread.
class CleanPages {
public:
    CleanPages() = delete;

    /// The name of the file system layer of SQLite that does so, for opening a database.
    static const char* vfs();

    /// Zeroes the unused part of a page of a table or an index, given how many pages the database
    /// has. Any other page stays as it is, and so does one that is damaged.
    static void clean(std::span<unsigned char> page, bool isFirst, qint64 pages);
};

} // namespace mossbank
