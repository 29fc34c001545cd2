// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDir>
#include <QString>

namespace mossbank {

/// The folder of a sample library, of this process alone: new and empty when made, and gone with
/// this object. What became of sample runs that died is removed on the way.
///
/// Nothing is removed that is somebody else's, or that a link leads to: others have files in the
/// same folder, under names that they choose.
///
/// Threading: one in a process.
class SampleFolder {
public:
    /// In the folder `temporary`. Throws FileError where it cannot be made.
    explicit SampleFolder(const QString& temporary = QDir::tempPath());
    ~SampleFolder();
    Q_DISABLE_COPY_MOVE(SampleFolder)

    const QString& path() const { return m_path; }

    /// Removes what sample runs whose processes no longer live have left beside `own`. What cannot
    /// be removed stays.
    static void tidy(const QString& own);

private:
    QString m_path;
};

} // namespace mossbank
