// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/Browsers.h"

#include <QPair>
#include <QSet>

namespace mossbank {

/// Whether a text in which Firefox keeps its settings has it browse privately always. A line that
/// is struck out by `//` or `#` does not count.
bool hasPrivateSetting(const QByteArray& settings);

/// The same of the rules (policies.json) that a computer's owner gives Firefox.
bool hasPrivateRule(const QByteArray& rules);

/// Finds out whether a running browser is one whose windows are all private. Such a window says so
/// nowhere: only a private window beside ordinary ones is marked.
///
/// Threading: one thread at a time. Reads some small files of the process.
/// Errors: where it cannot be told the answer is that it may be private.
class BrowserPrivacy {
public:
    /// `processes` is where the system keeps what it knows of each.
    explicit BrowserPrivacy(const QString& processes = QStringLiteral("/proc"))
        : m_processes(processes)
    {
    }

    bool mayBePrivate(const Browser& browser, qint64 process);

private:
    bool maySettingsBePrivate(const QString& folder) const;

    QString m_processes;
    /// Processes by their number and the instant of their start. One that was private is so to its
    /// end: its settings count from its next start on.
    QSet<QPair<qint64, QByteArray>> m_private;
};

} // namespace mossbank
