// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/FolderPrograms.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <gio/gio.h>

using namespace Qt::StringLiterals;

namespace mossbank::test {

namespace {

constexpr int kPatience = 20'000;

void write(const QString& path, const QString& text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < text.size())
        qFatal("cannot write %s", qPrintable(path));
}

QString chosen()
{
    GAppInfo* const application = g_app_info_get_default_for_type("inode/directory", FALSE);
    if (!application)
        return {};
    const QString id = QString::fromUtf8(g_app_info_get_id(application));
    g_object_unref(application);
    return id;
}

} // namespace

FolderPrograms::FolderPrograms()
{
    const auto set = [&](const char* name, const QString& folder) {
        QDir().mkpath(m_home.filePath(folder));
        qputenv(name, m_home.filePath(folder).toUtf8());
    };
    set("HOME", {});
    set("XDG_DATA_HOME", u"data"_s);
    set("XDG_DATA_DIRS", u"none"_s);
    set("XDG_CONFIG_HOME", u"config"_s);
    set("XDG_CONFIG_DIRS", u"none"_s);
    set("XDG_CACHE_HOME", u"cache"_s);
    qunsetenv("XDG_CURRENT_DESKTOP");
    QDir().mkpath(m_home.filePath(u"data/applications"_s));
}

bool FolderPrograms::install()
{
    const QString name = u"heron-%1"_s.arg(++m_count);
    QDir().mkpath(program(name));
    const QString saying = QStringLiteral(MOSSBANK_SOURCE_DIR "/tests/Desktop/data/saying");
    QFile::copy(saying, program(name) + u"/saying"_s);
    write(program(name) + u"/go"_s, {});
    write(m_home.filePath(u"data/applications/%1.desktop"_s.arg(name)),
          u"[Desktop Entry]\nType=Application\nName=Heron\nMimeType=inode/directory;\n"
          "Exec=\"%1/saying\" %f\n"_s.arg(program(name)));
    write(m_home.filePath(u"config/mimeapps.list"_s),
          u"[Default Applications]\ninode/directory=%1.desktop\n"_s.arg(name));
    return QTest::qWaitFor([&] { return chosen() == name + u".desktop"_s; }, kPatience);
}

bool FolderPrograms::remove()
{
    QFile::remove(m_home.filePath(u"data/applications/heron-%1.desktop"_s.arg(m_count)));
    QFile::remove(m_home.filePath(u"config/mimeapps.list"_s));
    return QTest::qWaitFor([] { return chosen().isEmpty(); }, kPatience);
}

bool FolderPrograms::isStarted() const
{
    return QFile::exists(program(u"heron-%1"_s.arg(m_count)) + u"/told"_s);
}

QStringList FolderPrograms::told()
{
    if (!QTest::qWaitFor([this] { return isStarted(); }, kPatience))
        return {};
    QFile file(program(u"heron-%1"_s.arg(m_count)) + u"/told"_s);
    return file.open(QIODevice::ReadOnly)
               ? QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)
               : QStringList();
}

QString FolderPrograms::valueOf(const QStringList& told, const QString& name)
{
    for (const QString& line : told) {
        if (line.startsWith(name + u' '))
            return line.mid(name.size() + 1);
    }
    return {};
}

QString FolderPrograms::program(const QString& name) const
{
    return m_home.filePath(u"programs/"_s + name);
}

} // namespace mossbank::test
