// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

namespace mossbank {

/// A disk that goes bad: stands before the calls with which this program, SQLite in it too,
/// changes files (open, mkostemp, write, pwrite, fsync, fdatasync, ftruncate, rename, unlink), and
/// counts those below one folder. A write that is struck has written half of its bytes. A program
/// with it syncs nothing: all of it survives the process, and nothing a power cut.
///
/// Threading: made and taken away by one thread; counts the calls of all. One at a time.
class BadDisk {
public:
    enum class Then {
        /// The call fails, and the next goes well.
        FailOnce,
        /// That call and all that come after it fail.
        FailOn,
        /// The process is killed in place of the call, by a signal that nothing can catch.
        Kill,
    };

    /// Strikes at the call of that number, from 1, from now on; 0 for none. `errorNumber` is what
    /// a failing call leaves in errno.
    BadDisk(const QString& folder, int nth, Then then, int errorNumber);
    /// The disk is well again.
    ~BadDisk();
    Q_DISABLE_COPY_MOVE(BadDisk)

    /// How many calls there were so far.
    static int calls();
    /// The first call that was struck and the file's name, as in "unlink A.jpg"; empty for none.
    static QByteArray struck();
};

} // namespace mossbank
