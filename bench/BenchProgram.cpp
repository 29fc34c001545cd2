// SPDX-License-Identifier: Apache-2.0
//
// The real program, as a process of its own with a home of its own.
#include "MossbankCore/Support/Failure.h"
#include "bench/BenchCheck.h"
#include "bench/BenchMemory.h"
#include "bench/BenchOutput.h"
#include "bench/BenchTiming.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <unistd.h>

#include <chrono>
#include <thread>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

constexpr int kPatience = 30'000;
constexpr double kThousand = 1e3;

QByteArray contentsOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw FileError(file.errorString(), path);
    return file.readAll();
}

/// The program, recording once a second. Ended when this goes.
class RecordingProgram {
public:
    RecordingProgram()
    {
        const QDir home(m_home.path());
        home.mkpath(u"config/Mossbank"_s);
        home.mkpath(u"run"_s);
        QFile::setPermissions(home.filePath(u"run"_s),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QFile choices(home.filePath(u"config/Mossbank/Mossbank.ini"_s));
        if (!choices.open(QIODevice::WriteOnly))
            throw FileError(choices.errorString(), choices.fileName());
        choices.write("[General]\nrecordsAtLaunch=true\ninterval=1\n");
        choices.close();

        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"HOME"_s, home.path());
        environment.insert(u"XDG_DATA_HOME"_s, home.filePath(u"data"_s));
        environment.insert(u"XDG_CONFIG_HOME"_s, home.filePath(u"config"_s));
        environment.insert(u"XDG_RUNTIME_DIR"_s, home.filePath(u"run"_s));
        // Nobody's keyring is asked.
        environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, u"unix:path=/nowhere/bus"_s);
        m_process.setProcessEnvironment(environment);
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.start(QCoreApplication::applicationDirPath() + u"/../Mossbank/mossbank"_s,
                        QStringList());
    }

    ~RecordingProgram()
    {
        m_process.terminate();
        if (!m_process.waitForFinished(kPatience)) {
            m_process.kill();
            m_process.waitForFinished(kPatience);
        }
    }
    Q_DISABLE_COPY_MOVE(RecordingProgram)

    /// The screen was saved once, and found to be the same after that.
    void waitUntilUnchanged()
    {
        const auto deadline =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(kPatience);
        while (!status().contains(u"Skipped an unchanged screen"_s)) {
            if (std::chrono::steady_clock::now() > deadline ||
                m_process.state() == QProcess::NotRunning)
                throw Failure(u"The program does not check: "_s + status());
            m_process.waitForReadyRead(100);
        }
    }

    double processorMilliseconds() const
    {
        // The times stand behind the name, which may have blanks in it.
        const QByteArray all = contentsOf(u"/proc/%1/stat"_s.arg(m_process.processId()));
        const QList<QByteArray> fields = all.mid(all.lastIndexOf(')') + 2).split(' ');
        constexpr qsizetype kUser = 11;
        const qint64 ticks =
            fields.value(kUser).toLongLong() + fields.value(kUser + 1).toLongLong();
        return static_cast<double>(ticks) * kThousand / static_cast<double>(::sysconf(_SC_CLK_TCK));
    }

    qint64 process() const { return m_process.processId(); }

    qsizetype pictures() const
    {
        return QDir(m_home.filePath(u"data/Mossbank/Images"_s)).entryList(QDir::Files).size();
    }

    /// What it last said.
    QString status()
    {
        m_process.waitForReadyRead(0);
        m_terminal += QString::fromLocal8Bit(m_process.readAll());
        return m_terminal.trimmed().section(u'\n', -1);
    }

private:
    QTemporaryDir m_home;
    QProcess m_process;
    QString m_terminal;
};

} // namespace

void measureProgram(int seconds)
{
    RecordingProgram program;
    program.waitUntilUnchanged();
    const qsizetype pictures = program.pictures();
    const double before = program.processorMilliseconds();
    const double wall =
        milliseconds([&] { std::this_thread::sleep_for(std::chrono::seconds(seconds)); });
    const double processor = program.processorMilliseconds() - before;
    if (program.pictures() != pictures ||
        !program.status().contains(u"Skipped an unchanged screen"_s))
        throw Failure(u"The screen changed while the program was measured."_s);
    // A check is a second and its own time after the last, so there are no more than seconds.
    printFigures({{u"bench"_s, u"check"_s},
                  {u"what"_s, u"the program, one check a second"_s},
                  {u"seconds"_s, rounded(wall / kThousand)},
                  {u"processor_ms"_s, rounded(processor)},
                  {u"processor_ms_a_second"_s, rounded(processor * kThousand / wall)},
                  {u"resident_mb"_s,
                   rounded(residentMegabytes("VmRSS", QString::number(program.process())))}});
}

} // namespace mossbank
