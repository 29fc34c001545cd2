// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QLockFile>
#include <QString>

namespace mossbank {

/// Sees to it that one Mossbank runs on a library: by a lock file in the library's folder, the one
/// place that every start on it has in common, however the path to it is written. The lock goes
/// with its process, also when that is killed.
class SingleInstance {
public:
    /// For the library in the folder `root`, which is made if need be.
    explicit SingleInstance(const QString& root);

    /// False when another process holds the library. Where that cannot be told, as in a folder
    /// that cannot be written to, this counts as the first, and opening the library says why.
    bool isFirst();

    /// After `isFirst` was false: who came first, as a sentence for the user.
    QString whoIsFirst() const;

private:
    QLockFile m_lock;
};

} // namespace mossbank
