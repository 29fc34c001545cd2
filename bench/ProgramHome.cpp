// SPDX-License-Identifier: Apache-2.0
#include "bench/ProgramHome.h"

#include "MossbankCore/Support/Failure.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace mossbank {

ProgramHome::ProgramHome(const QByteArray& choices)
{
    const QDir home(m_home.path());
    home.mkpath(u"config/Mossbank"_s);
    home.mkpath(u"run"_s);
    QFile::setPermissions(home.filePath(u"run"_s),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QFile file(home.filePath(u"config/Mossbank/Mossbank.ini"_s));
    if (!file.open(QIODevice::WriteOnly) || file.write("[General]\n" + choices) < 0)
        throw FileError(file.errorString(), file.fileName());
}

QProcessEnvironment ProgramHome::environment(const QString& sessionBus) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"HOME"_s, m_home.path());
    environment.insert(u"XDG_DATA_HOME"_s, m_home.filePath(u"data"_s));
    environment.insert(u"XDG_CONFIG_HOME"_s, m_home.filePath(u"config"_s));
    environment.insert(u"XDG_RUNTIME_DIR"_s, m_home.filePath(u"run"_s));
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, sessionBus);
    return environment;
}

QString ProgramHome::program()
{
    return QCoreApplication::applicationDirPath() + u"/../Mossbank/mossbank"_s;
}

} // namespace mossbank
