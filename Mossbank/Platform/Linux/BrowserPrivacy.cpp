// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/BrowserPrivacy.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>
#include <filesystem>
#include <optional>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

namespace fs = std::filesystem;

const QString kSetting = u"browser.privatebrowsing.autostart"_s;
/// Browsers come and go; far more than that were never open together.
constexpr qsizetype kMostKnown = 100;

/// Absent when it cannot be read.
std::optional<QByteArray> textOf(const QString& path)
{
    // Far more than such a file ever has.
    constexpr qint64 kMostBytes = 8 * 1024 * 1024;
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? std::optional(file.read(kMostBytes)) : std::nullopt;
}

/// When a process began, in the system's own count. Empty when it has gone.
QByteArray startOf(const QString& folder)
{
    constexpr int kStart = 19;
    const QByteArray text = textOf(folder + u"/stat"_s).value_or(QByteArray());
    // What the process is called comes first, in parentheses, and may have anything in it.
    return text.mid(text.lastIndexOf(')') + 2).split(' ').value(kStart);
}

QString linkTarget(const fs::path& path)
{
    std::error_code error;
    return QString::fromStdString(fs::read_symlink(path, error).string());
}

/// The folders that a process holds the lock of: where its settings are.
QStringList lockedFolders(const QString& folder)
{
    const QString lock = u"/.parentlock"_s;
    QStringList folders;
    std::error_code error;
    fs::directory_iterator files(QString(folder + u"/fd"_s).toStdString(), error);
    for (; !error && files != fs::directory_iterator(); files.increment(error)) {
        const QString target = linkTarget(files->path());
        if (target.endsWith(lock))
            folders.append(target.chopped(lock.size()));
    }
    return error ? QStringList() : folders;
}

/// Or may have one, in a file that cannot be read.
bool hasPrivateSettingIn(const QString& folder, const QStringList& patterns)
{
    const QDir files(folder);
    const QStringList names = files.entryList(patterns, QDir::Files);
    return std::ranges::any_of(names, [&](const QString& name) {
        const auto text = textOf(files.filePath(name));
        return !text || hasPrivateSetting(*text);
    });
}

} // namespace

bool hasPrivateSetting(const QByteArray& settings)
{
    static const QRegularExpression kOn(
        uR"(^(?!\s*(?://|#)).*["']%1["']\s*,\s*true\b)"_s.arg(QRegularExpression::escape(kSetting)),
        QRegularExpression::MultilineOption);
    // Of the thousands of lines few have to be looked at any closer.
    return settings.contains(kSetting.toLatin1()) &&
           kOn.match(QString::fromUtf8(settings)).hasMatch();
}

bool hasPrivateRule(const QByteArray& rules)
{
    constexpr int kAlways = 2;
    const QJsonObject policies =
        QJsonDocument::fromJson(rules).object().value(u"policies"_s).toObject();
    const QJsonValue setting = policies.value(u"Preferences"_s).toObject().value(kSetting);
    return policies.value(u"PrivateBrowsingModeAvailability"_s).toInt() == kAlways ||
           setting.toBool() || setting.toObject().value(u"Value"_s).toBool();
}

bool BrowserPrivacy::mayBePrivate(const Browser& browser, qint64 process)
{
    if (!browser.tellsOfPrivateWindows)
        return true;
    const QString folder = m_processes + u'/' + QString::number(process);
    if (isStartedPrivate(browser, textOf(folder + u"/cmdline"_s).value_or(QByteArray())))
        return true;
    if (browser.kin != Browser::Kin::Firefox)
        return false;
    const QByteArray start = startOf(folder);
    if (start.isEmpty() || m_private.contains({process, start}))
        return true;
    if (!maySettingsBePrivate(folder))
        return false;
    if (m_private.size() >= kMostKnown)
        m_private.clear();
    m_private.insert({process, start});
    return true;
}

bool BrowserPrivacy::maySettingsBePrivate(const QString& folder) const
{
    // The way through its root is right for a process in a sandbox, too.
    const QString root = folder + u"/root"_s;
    const QString program = linkTarget(fs::path(QString(folder + u"/exe"_s).toStdString()));
    const QString home = root + program.left(program.lastIndexOf(u'/'));
    const QStringList folders = lockedFolders(folder);
    if (program.isEmpty() || folders.isEmpty())
        return true;
    for (const QString& locked : folders) {
        // Before it has been closed once it may have none but the settings it came with.
        if (!QDir(root + locked).isReadable() ||
            hasPrivateSettingIn(root + locked, {u"prefs.js"_s, u"user.js"_s}))
            return true;
    }
    for (const QString& rules :
         {home + u"/distribution/policies.json"_s, root + u"/etc/firefox/policies/policies.json"_s,
          root + u"/etc/firefox-esr/policies/policies.json"_s}) {
        if (hasPrivateRule(textOf(rules).value_or(QByteArray())))
            return true;
    }
    return hasPrivateSettingIn(home, {u"*.cfg"_s}) ||
           hasPrivateSettingIn(home + u"/defaults/pref"_s, {u"*.js"_s});
}

} // namespace mossbank
