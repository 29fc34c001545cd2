// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace mossbank::test {

/// The user's folder for application data, with desktop files of the tests' own alone. It lives as
/// long as the process: GLib reads the variable that names it once.
inline const QTemporaryDir& dataHome()
{
    static const QTemporaryDir folder;
    return folder;
}

/// Names it, for a user who reads German. Before anything else is done.
inline void useDataHome()
{
    qputenv("XDG_DATA_HOME", dataHome().path().toUtf8());
    qputenv("LANGUAGE", "de");
    QDir(dataHome().path()).mkdir(QStringLiteral("applications"));
}

inline QString desktopFile(const QString& id)
{
    return dataHome().filePath(QStringLiteral("applications/%1.desktop").arg(id));
}

/// Fails the case when it cannot.
inline void install(const QString& id, const QByteArray& lines)
{
    QFile file(desktopFile(id));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[Desktop Entry]\nType=Application\n" + lines);
}

} // namespace mossbank::test
