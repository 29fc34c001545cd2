// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

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

    /// Removes a file. One that is not there counts as removed.
    static void removeFile(const QString& path);
};

} // namespace mossbank
