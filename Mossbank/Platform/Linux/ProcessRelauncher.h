// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Relauncher.h"

#include <QString>
#include <QStringList>

namespace mossbank {

/// Starts the file that this program was started from, or what has taken its place since: after an
/// update that is the new version.
///
/// The new process has a session of its own, so that no terminal's end is its end. It has nothing
/// of this one's standard files: a shell that waits for all of this one's output to have come
/// would wait for the other as well.
///
/// Threading: that of its port.
class ProcessRelauncher final : public Relauncher {
public:
    /// `executable`: where this copy lies. `arguments`: what the other is started with.
    explicit ProcessRelauncher(QString executable,
                               QStringList arguments = {QString::fromUtf16(kRelaunched)});

    Availability availability() const override;
    void openAnother() override;

    /// What is started.
    const QString& program() const { return m_program; }

private:
    QString m_program;
    QStringList m_arguments;
};

} // namespace mossbank
