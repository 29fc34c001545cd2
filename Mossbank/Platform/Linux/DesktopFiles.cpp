// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/DesktopFiles.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QSet>
#include <QStandardPaths>

#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

#include <algorithm>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

/// Where a command of a desktop file leads to, links followed. Where a terminal's PATH leads and
/// where that of the desktop's start leads must not differ.
QString resolved(const QString& command)
{
    if (command.isEmpty())
        return {};
    static const QStringList kUsual = {u"/usr/local/bin"_s, u"/usr/bin"_s, u"/bin"_s,
                                       u"/usr/games"_s, u"/snap/bin"_s};
    QString path = command;
    if (!QFileInfo(path).isAbsolute())
        path = QStandardPaths::findExecutable(command);
    if (path.isEmpty())
        path = QStandardPaths::findExecutable(command, kUsual);
    return path.isEmpty() ? QString() : QFileInfo(path).canonicalFilePath();
}

/// The text of a key of a desktop file, in the user's language where it has one.
QString textOf(GKeyFile* file, const char* key)
{
    const std::unique_ptr<char, decltype(&g_free)> text(
        g_key_file_get_locale_string(file, G_KEY_FILE_DESKTOP_GROUP, key, nullptr, nullptr),
        &g_free);
    return QString::fromUtf8(text.get());
}

bool flagOf(GKeyFile* file, const char* key)
{
    return g_key_file_get_boolean(file, G_KEY_FILE_DESKTOP_GROUP, key, nullptr) != FALSE;
}

QString commandOf(GKeyFile* file)
{
    int count = 0;
    char** words = nullptr;
    const QByteArray line = textOf(file, G_KEY_FILE_DESKTOP_KEY_EXEC).toUtf8();
    if (!g_shell_parse_argv(line.constData(), &count, &words, nullptr))
        return {};
    const QString command = QFile::decodeName(words[0]);
    g_strfreev(words);
    return command;
}

std::optional<DesktopFile> readFile(const QString& path, const QString& id)
{
    const std::unique_ptr<GKeyFile, decltype(&g_key_file_free)> file(g_key_file_new(),
                                                                     &g_key_file_free);
    const bool isRead = g_key_file_load_from_file(file.get(), QFile::encodeName(path).constData(),
                                                  G_KEY_FILE_NONE, nullptr) != FALSE;
    if (!isRead || textOf(file.get(), G_KEY_FILE_DESKTOP_KEY_TYPE) != "Application"_L1 ||
        flagOf(file.get(), G_KEY_FILE_DESKTOP_KEY_HIDDEN))
        return {};
    return DesktopFile{.application = {id, textOf(file.get(), G_KEY_FILE_DESKTOP_KEY_NAME)},
                       .windowClass = textOf(file.get(), G_KEY_FILE_DESKTOP_KEY_STARTUP_WM_CLASS),
                       .executable = resolved(commandOf(file.get())),
                       .icon = textOf(file.get(), G_KEY_FILE_DESKTOP_KEY_ICON),
                       .isHidden = flagOf(file.get(), G_KEY_FILE_DESKTOP_KEY_NO_DISPLAY),
                       .runsInTerminal = flagOf(file.get(), G_KEY_FILE_DESKTOP_KEY_TERMINAL)};
}

QStringList applicationFolders()
{
    QStringList folders = {QFile::decodeName(g_get_user_data_dir())};
    for (const char* const* folder = g_get_system_data_dirs(); *folder; ++folder)
        folders.append(QFile::decodeName(*folder));
    for (QString& folder : folders)
        folder += u"/applications"_s;
    return folders;
}

} // namespace

// Not asked of GLib, which leaves out those whose executable is not on this process's PATH: their
// windows are theirs all the same.
std::vector<DesktopFile> readDesktopFiles()
{
    // GLib tells of a change once, and then not before it has been asked for an application.
    if (GDesktopAppInfo* const own = g_desktop_app_info_new("local.mossbank.Mossbank.desktop"))
        g_object_unref(own);
    std::vector<DesktopFile> entries;
    QSet<QString> seen;
    for (const QString& folder : applicationFolders()) {
        QDirIterator files(folder, {u"*.desktop"_s}, QDir::Files,
                           QDirIterator::Subdirectories | QDirIterator::FollowSymlinks);
        while (files.hasNext()) {
            const QString path = files.next();
            QString id = path.mid(folder.size() + 1).replace(u'/', u'-');
            id.chop(u".desktop"_s.size());
            // Those of the user come before those of the system.
            if (seen.contains(id))
                continue;
            seen.insert(id);
            if (auto entry = readFile(path, id))
                entries.push_back(std::move(*entry));
        }
    }
    // Of two that claim the same class the one that users see comes first.
    std::ranges::sort(entries, {}, [](const DesktopFile& entry) {
        return std::pair(entry.isHidden, entry.application.bundleID);
    });
    return entries;
}

} // namespace mossbank
