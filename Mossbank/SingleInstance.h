// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QLockFile>
#include <QString>

namespace mossbank {

/// Sees to it that one Mossbank runs on a library. The lock is let go with the process, also when
/// that is killed.
class SingleInstance {
public:
    /// For the library in the folder `root`.
    explicit SingleInstance(const QString& root);

    /// Whether this is the only one. If not, `otherProcess` tells which came first.
    bool isFirst();

    /// The number of the process that came first; 0 when it cannot be told.
    qint64 otherProcess() const;

private:
    QLockFile m_lock;
};

} // namespace mossbank
