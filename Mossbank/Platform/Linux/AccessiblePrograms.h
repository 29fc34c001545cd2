// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/Accessible.h"

#include <QHash>

namespace mossbank {

/// Whether two processes are of one program: the same process, or both in the same sandbox. What
/// runs in a sandbox speaks to the bus through another process that stands beside it. `processes`
/// is where the system keeps what it knows of each.
bool areOfOneProgram(qint64 one, qint64 other, const QString& processes = QStringLiteral("/proc"));

/// Finds who of the programs on the bus a window belongs to.
///
/// Threading: that of the bus.
class AccessiblePrograms {
public:
    explicit AccessiblePrograms(AccessibilityBus& bus)
        : m_bus(bus)
    {
    }

    /// The roots of what this process has on the bus; an empty list when it is not there.
    Asked<QList<Accessible>> rootsOf(qint64 process);
    /// Whether that name on the bus is one of this process.
    Asked<bool> isOf(QString service, qint64 process);
    /// A new bus gives the old names to others.
    void forget() { m_processes.clear(); }

private:
    AccessibilityBus& m_bus;
    QHash<QString, qint64> m_processes;
};

/// Which of a program's windows may be the one that the window manager calls active and that has
/// `title`: what says so itself or is named after it. All of them where none does: a program is
/// late to say it, or never does.
QList<AccessibleWindow> windowsInFront(const QList<AccessibleWindow>& windows,
                                       const QString& title);

} // namespace mossbank
