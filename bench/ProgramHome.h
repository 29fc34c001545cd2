// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

namespace mossbank {

/// A home for the real program, with choices of its own. Nothing of the user's is read or touched.
///
/// Errors: the constructor throws a FileError.
class ProgramHome {
public:
    /// On which there is nobody.
    static constexpr char16_t kNoBus[] = u"unix:path=/nowhere/bus";

    /// `choices`: lines of the file.
    explicit ProgramHome(const QByteArray& choices);

    /// The session bus is not the user's, whose keyring would be asked.
    QProcessEnvironment environment(const QString& sessionBus = QString::fromUtf16(kNoBus)) const;

    /// The folder of the library.
    QString library() const { return m_home.filePath(QStringLiteral("data/Mossbank")); }

    /// Where the program of this build lies.
    static QString program();

private:
    QTemporaryDir m_home;
};

} // namespace mossbank
