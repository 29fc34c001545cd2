// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Support/UserFolders.h"

#include "MossbankCore/Support/Failure.h"

#include <QByteArray>
#include <QDir>
#include <QFile>

#include <pwd.h>
#include <unistd.h>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// Empty for what is nobody's own folder.
QString ownFolder(const QByteArray& written)
{
    const QString path = QDir::cleanPath(QFile::decodeName(written));
    // Above the root there is the root.
    const bool isRoot = path == u"/" || path == u"/.." || path.startsWith(u"/../");
    return path.startsWith(u'/') && !isRoot ? path : QString();
}

QByteArray homeInListOfUsers()
{
    constexpr qsizetype kLongEnough = 16'384;
    QByteArray buffer(kLongEnough, '\0');
    passwd entry = {};
    passwd* found = nullptr;
    const int failed = ::getpwuid_r(::getuid(), &entry, buffer.data(),
                                    static_cast<std::size_t>(buffer.size()), &found);
    return failed == 0 && found ? QByteArray(entry.pw_dir) : QByteArray();
}

QString home()
{
    QString path = ownFolder(qgetenv("HOME"));
    if (path.isEmpty())
        path = ownFolder(homeInListOfUsers());
    if (path.isEmpty())
        throw Failure(u"There is no home folder to keep the library and the choices in: neither "
                      "HOME nor the list of users names one."_s);
    return path;
}

QString folder(const char* variable, const QString& inHome)
{
    const QString chosen = ownFolder(qgetenv(variable));
    return chosen.isEmpty() ? home() + inHome : chosen;
}

} // namespace

QString UserFolders::data()
{
    return folder("XDG_DATA_HOME", u"/.local/share"_s);
}

QString UserFolders::configuration()
{
    return folder("XDG_CONFIG_HOME", u"/.config"_s);
}

} // namespace mossbank
