// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/XdgAutostart.h"

#include "Mossbank/Platform/Linux/GlibOwned.h"
#include "MossbankCore/Support/Failure.h"
#include "MossbankCore/Support/UserFolders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <gio/gdesktopappinfo.h>

#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

using KeyFile = std::unique_ptr<GKeyFile, GlibFree<g_key_file_unref>>;
using Text = std::unique_ptr<char, GlibFree<g_free>>;

constexpr char kGnomesSwitch[] = "X-GNOME-Autostart-enabled";

/// Opening a pipe would wait for somebody to write to it, and what is written in place of a link
/// goes to where that leads.
bool isSomethingElse(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() && !info.isFile();
}

KeyFile read(const QString& path)
{
    if (isSomethingElse(path))
        return nullptr;
    KeyFile file(g_key_file_new());
    const bool isRead = g_key_file_load_from_file(file.get(), QFile::encodeName(path).constData(),
                                                  G_KEY_FILE_NONE, nullptr) != FALSE;
    return isRead ? std::move(file) : nullptr;
}

/// What a line of this kind starts, which is written as for a shell and has signs for files.
QString startedBy(GKeyFile* file)
{
    const Text line(g_key_file_get_string(file, G_KEY_FILE_DESKTOP_GROUP,
                                          G_KEY_FILE_DESKTOP_KEY_EXEC, nullptr));
    int count = 0;
    char** words = nullptr;
    if (!line || !g_shell_parse_argv(line.get(), &count, &words, nullptr))
        return {};
    QString program = QFile::decodeName(words[0]);
    g_strfreev(words);
    return program.replace(u"%%"_s, u"%"_s);
}

/// The executable as the first word of such a line.
QString quoted(QString executable)
{
    executable.replace(u"%"_s, u"%%"_s);
    for (const QChar sign : {u'\\', u'"', u'`', u'$'})
        executable.replace(sign, u"\\"_s + sign);
    return u'"' + executable + u'"';
}

} // namespace

XdgAutostart::XdgAutostart(QString executable, const QString& identity)
    : m_executable(std::move(executable))
    , m_entry(UserFolders::configuration() + u"/autostart/"_s + identity + u".desktop"_s)
{
}

LoginService::Status XdgAutostart::status() const
{
    const KeyFile file = read(m_entry);
    if (!file)
        return Status::NotRegistered;
    const auto isTrue = [&](const char* key) {
        return g_key_file_get_boolean(file.get(), G_KEY_FILE_DESKTOP_GROUP, key, nullptr) != FALSE;
    };
    const bool isSwitchedOff =
        isTrue(G_KEY_FILE_DESKTOP_KEY_HIDDEN) ||
        (g_key_file_has_key(file.get(), G_KEY_FILE_DESKTOP_GROUP, kGnomesSwitch, nullptr) &&
         !isTrue(kGnomesSwitch));
    return !isSwitchedOff && startedBy(file.get()) == m_executable ? Status::Enabled
                                                                   : Status::NotRegistered;
}

void XdgAutostart::registerItem()
{
    if (m_executable.isEmpty())
        throw Failure(u"It is not known where this copy of Mossbank lies."_s);
    if (isWithoutHome())
        throw Failure(u"This copy of Mossbank is gone when it ends. Install it first."_s);
    const KeyFile file(g_key_file_new());
    const auto set = [&](const char* key, const QString& value) {
        g_key_file_set_string(file.get(), G_KEY_FILE_DESKTOP_GROUP, key,
                              value.toUtf8().constData());
    };
    set(G_KEY_FILE_DESKTOP_KEY_TYPE, u"Application"_s);
    set(G_KEY_FILE_DESKTOP_KEY_NAME, u"Mossbank"_s);
    set(G_KEY_FILE_DESKTOP_KEY_EXEC, quoted(m_executable) + u' ' + QString::fromUtf16(kAtLogin));
    set(kGnomesSwitch, u"true"_s);
    gsize length = 0;
    const Text text(g_key_file_to_data(file.get(), &length, nullptr));

    if (isSomethingElse(m_entry))
        throw Failure(u"%1 cannot be written: it is no ordinary file."_s.arg(m_entry));
    QDir().mkpath(QFileInfo(m_entry).path());
    QSaveFile entry(m_entry);
    const auto size = static_cast<qint64>(length);
    if (!entry.open(QIODevice::WriteOnly) || entry.write(text.get(), size) != size ||
        !entry.commit())
        throw Failure(u"%1 cannot be written: %2."_s.arg(m_entry, entry.errorString()));
}

void XdgAutostart::unregisterItem()
{
    QFile entry(m_entry);
    if (entry.exists() && !entry.remove())
        throw Failure(u"%1 cannot be removed: %2."_s.arg(m_entry, entry.errorString()));
}

// What an AppImage is run from is gone with the run.
bool XdgAutostart::isWithoutHome() const
{
    return m_executable.isEmpty() || m_executable.contains(u"/.mount_"_s);
}

} // namespace mossbank
