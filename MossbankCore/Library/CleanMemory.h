// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace mossbank {

/// Keeps what lies in the program's memory from getting into a database's files.
///
/// SQLite may write memory that it never wrote to: where a write-ahead log turns out to hold
/// nothing, the index beside it (`-shm`) is made of whatever was in that memory before, which may
/// be a picture that is sealed everywhere else.
///
/// Threading: any thread.
class CleanMemory {
public:
    CleanMemory() = delete;

    /// Has SQLite begin with zeros wherever it takes memory. For all of the program, once, before
    /// its first database is opened; later it changes nothing.
    static void use();
};

} // namespace mossbank
