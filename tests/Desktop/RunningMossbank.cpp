// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/RunningMossbank.h"

#include "MossbankCore/Library/HistoryStore.h"

#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

#include <csignal>

namespace mossbank::test {

namespace {

using namespace Qt::StringLiterals;

constexpr int kPatience = 20'000;

const QString kMossbank = QStringLiteral(MOSSBANK_BINARY_DIR "/Mossbank/mossbank");
const QString kFind = QStringLiteral(MOSSBANK_BINARY_DIR "/mossbank-find/mossbank-find");

} // namespace

QString inSeconds(int seconds)
{
    return QDateTime::currentDateTimeUtc().addSecs(seconds).toString(Qt::ISODateWithMs);
}

RunningMossbank::RunningMossbank()
    : m_program(kMossbank)
{
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    QDir().mkpath(m_home.filePath(u"run"_s));
    QFile::setPermissions(m_home.filePath(u"run"_s),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    choose({});
}

RunningMossbank::~RunningMossbank()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished(kPatience);
    }
}

void RunningMossbank::choose(const QMap<QString, QString>& choices)
{
    QFile file(choicesFile());
    QDir().mkpath(QFileInfo(file).path());
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(file.fileName()));
    QTextStream stream(&file);
    stream << "[General]\n";
    if (!choices.contains(u"recordsAtLaunch"_s))
        stream << "recordsAtLaunch=true\n";
    for (auto choice = choices.begin(); choice != choices.end(); ++choice)
        stream << choice.key() << '=' << choice.value() << '\n';
}

QProcessEnvironment RunningMossbank::environment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"HOME"_s, m_home.path());
    // What is installed for the tests stays so, beside what is installed on the machine.
    const QStringList installed = {environment.value(u"XDG_DATA_HOME"_s), u"/usr/local/share"_s,
                                   u"/usr/share"_s};
    environment.insert(u"XDG_DATA_DIRS"_s, installed.join(u':'));
    environment.insert(u"XDG_DATA_HOME"_s, m_home.filePath(u"data"_s));
    environment.insert(u"XDG_CONFIG_HOME"_s, m_home.filePath(u"config"_s));
    environment.insert(u"XDG_RUNTIME_DIR"_s, m_home.filePath(u"run"_s));
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s,
                       m_sessionBus.isEmpty() ? u"unix:path=/nowhere/bus"_s : m_sessionBus);
    for (auto variable = m_variables.begin(); variable != m_variables.end(); ++variable) {
        if (variable->isNull())
            environment.remove(variable.key());
        else
            environment.insert(variable.key(), *variable);
    }
    return environment;
}

void RunningMossbank::setBeginning(const std::function<void()>& beginning)
{
    m_process.setChildProcessModifier(beginning);
}

QString RunningMossbank::choicesFile() const
{
    return m_home.filePath(u"config/Mossbank/Mossbank.ini"_s);
}

QString RunningMossbank::choice(const QString& key) const
{
    QFile file(choicesFile());
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QString beginning = key + u'=';
    for (const QString& line : QString::fromUtf8(file.readAll()).split(u'\n')) {
        if (line.startsWith(beginning))
            return line.mid(beginning.size());
    }
    return {};
}

bool RunningMossbank::start(const QStringList& arguments)
{
    m_terminal.clear();
    m_process.setProcessEnvironment(environment());
    // A window of its own would be in front of what a test shows.
    const bool staysOutOfSight = !m_opensWindow && !arguments.contains(u"--demo"_s);
    m_process.start(m_program,
                    staysOutOfSight ? QStringList{u"--at-login"_s} + arguments : arguments);
    return m_process.waitForStarted(kPatience);
}

int RunningMossbank::stop(int signal)
{
    // One that has ended has no number, and 0 stands for this very test.
    if (m_process.state() == QProcess::Running)
        ::kill(static_cast<pid_t>(m_process.processId()), signal);
    return waitForEnd();
}

int RunningMossbank::waitForEnd()
{
    const bool hasEnded =
        m_process.state() == QProcess::NotRunning || m_process.waitForFinished(kPatience);
    return hasEnded && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

bool RunningMossbank::waitFor(const QString& line, int times)
{
    QElapsedTimer timer;
    timer.start();
    while (terminal().count(line) < times) {
        if (timer.hasExpired(kPatience) || m_process.state() == QProcess::NotRunning)
            return false;
        m_process.waitForReadyRead(100);
    }
    return true;
}

QString RunningMossbank::terminal()
{
    m_terminal += QString::fromLocal8Bit(m_process.readAll());
    return m_terminal;
}

QString RunningMossbank::library() const
{
    return m_home.filePath(u"data/Mossbank"_s);
}

QStringList RunningMossbank::pictureFiles() const
{
    const QDir images(library() + u"/Images"_s);
    QStringList files;
    for (const QString& name : images.entryList(QDir::Files | QDir::Hidden))
        files.append(images.filePath(name));
    return files;
}

QList<Memory> RunningMossbank::rows() const
{
    HistoryStore store(HistoryStore::ReadingOnly{.root = library()});
    return store.fetch({.limit = 86'400, .withText = true}).result();
}

RunningMossbank::Found RunningMossbank::find(const QStringList& arguments) const
{
    return runToEnd(kFind, arguments, environment());
}

RunningMossbank::Found RunningMossbank::startAgain(const QString& dataHome) const
{
    QProcessEnvironment asBefore = environment();
    if (!dataHome.isEmpty())
        asBefore.insert(u"XDG_DATA_HOME"_s, dataHome);
    return runToEnd(m_program, {}, asBefore);
}

QStringList RunningMossbank::processes() const
{
    QStringList found;
    for (const QString& process : QDir(u"/proc"_s).entryList({u"[0-9]*"_s}, QDir::Dirs)) {
        QFile file(u"/proc/%1/environ"_s.arg(process));
        if (file.open(QIODevice::ReadOnly) &&
            file.readAll().split('\0').contains("HOME=" + home().toLocal8Bit()))
            found.append(process);
    }
    return found;
}

std::unique_ptr<QProcess> RunningMossbank::startAnother(const QStringList& arguments) const
{
    auto process = std::make_unique<QProcess>();
    process->setProcessChannelMode(QProcess::MergedChannels);
    process->setProcessEnvironment(environment());
    process->start(m_program, arguments);
    return process;
}

std::vector<std::unique_ptr<QProcess>> RunningMossbank::startTogether(int count) const
{
    std::vector<std::unique_ptr<QProcess>> processes;
    for (int number = 0; number < count; ++number)
        processes.push_back(startAnother());
    return processes;
}

RunningMossbank::Found RunningMossbank::runToEnd(const QString& program,
                                                 const QStringList& arguments,
                                                 const QProcessEnvironment& environment) const
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    const bool hasEnded = process.waitForFinished(kPatience);
    return {hasEnded ? process.exitCode() : -1, QString::fromLocal8Bit(process.readAll())};
}

} // namespace mossbank::test
