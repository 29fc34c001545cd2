// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/Date.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QString>

#include <optional>

namespace mossbank {

/// The few things done to files and folders, each with the rights and the durability that a
/// library wants.
///
/// Threading: any thread.
/// Errors: FileError.
class Files {
public:
    Files() = delete;

    /// What tells a file from every other, also from one that took its name: its place on its
    /// disk. Both zero for a file that is not there.
    struct Identity {
        quint64 device = 0;
        quint64 inode = 0;
        friend bool operator==(Identity, Identity) = default;
    };
    static Identity identity(const QString& path);

    /// Makes the folder and those above it that are missing, open to the user alone (0700). A
    /// folder that is there already stays as it is.
    static void createFolder(const QString& path);

    /// Makes an empty file, or empties the one there, open to the user alone (0600).
    static void createEmptyFile(const QString& path);

    /// Puts a file with these bytes at `path`, whole or not at all, also across a power cut: it is
    /// written under a name of its own beside it ("{name}.{anything}") and renamed when all of it
    /// is on the disk. Open to the user alone (0600).
    static void writeAtomically(const QString& path, const QByteArray& bytes);

    /// The name of the file that one of this name would be the unfinished writing of, for what
    /// `writeAtomically` may leave when the process is killed. Absent for a name of another form.
    static std::optional<QString> beingWritten(const QString& name);

    /// The names of the ordinary files in a folder, hidden ones too, in no order, as they stand on
    /// the disk: a name need not be UTF-8, and as text it would then name another file. None for a
    /// folder that is not there. What vanishes meanwhile, or cannot be looked at, is left out.
    static QByteArrayList filesIn(const QString& folder);

    /// When a file was last written to, in seconds since 1970. Absent when that cannot be told.
    static std::optional<Date> modified(const QString& folder, const QByteArray& name);

    /// Removes a file. One that is not there counts as removed. Whether it was there.
    static bool removeFile(const QString& path);
    static bool removeFile(const QString& folder, const QByteArray& name);

    /// Makes what was added to a folder and removed from it outlast a power cut.
    static void syncFolder(const QString& path);

    /// Whether on the file system of `path` what is synced takes along all that was done before it
    /// to any name. False also when that is not known.
    static bool syncsInOrder(const QString& path);
};

} // namespace mossbank
