// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace mossbank::test {

/// What programs open folders here: none, but for one of the test's own that says what it was
/// started with. Nothing of the machine's or the user's counts while it lives.
///
/// One in a process, and before the first use of GLib, which looks where they are only once.
class FolderPrograms {
public:
    FolderPrograms();

    /// Installs one that the user has chosen for folders. False when GIO does not hear of it.
    bool install();
    /// Takes it away again.
    bool remove();

    /// What it has told once it was started; waits for that. Empty when it is not started.
    QStringList told();
    bool isStarted() const;
    /// Of that, the value of this.
    static QString valueOf(const QStringList& told, const QString& name);

private:
    QString program(const QString& name) const;

    QTemporaryDir m_home;
    int m_count = 0;
};

} // namespace mossbank::test
