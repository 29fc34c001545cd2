// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

namespace mossbank {

/// A session of the measurement's own, on which programs are asked to tell assistive tools what is
/// in their windows: a session bus, and the accessibility bus that it starts on demand. Nothing of
/// the user's is touched. Ends with this.
///
/// Errors: the constructor throws a Failure, or a FileError.
class BenchSession {
public:
    BenchSession();
    ~BenchSession();
    Q_DISABLE_COPY_MOVE(BenchSession)

    /// Of the session bus.
    const QString& address() const { return m_address; }

    /// Whether a process is connected to both buses by now.
    bool isOn(qint64 process) const;

private:
    void startBus();

    QTemporaryDir m_folder;
    QProcess m_bus;
    QString m_address;
    QString m_accessibilityAddress;
};

} // namespace mossbank
