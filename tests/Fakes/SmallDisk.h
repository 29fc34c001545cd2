// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

namespace mossbank {

/// A disk of a few megabytes, mounted for one test alone: the mount is in a name space of this
/// process and those that it starts, and goes with it.
class SmallDisk {
public:
    /// First of all in `main`, before any thread is started. What is in the way of mounts of its
    /// own is told by the first disk that is made.
    static void allow();

    /// Mounts one on the folder, which is there. `options` are tmpfs's own, as in "size=3m".
    SmallDisk(const QString& folder, const QByteArray& options);
    ~SmallDisk();
    Q_DISABLE_COPY_MOVE(SmallDisk)

    /// Why it could not be mounted. Empty when it was.
    const QString& problem() const { return m_problem; }

    /// Bytes that are left on it.
    qsizetype free() const;
    /// Fills it up to these bytes. Whether that went well.
    bool leave(qsizetype bytes) const;
    /// Takes away what `leave` has laid there.
    bool makeRoom() const;

private:
    QString filler() const;

    QString m_folder;
    QString m_problem;
};

} // namespace mossbank
