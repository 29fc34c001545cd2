// SPDX-License-Identifier: Apache-2.0
//
// The real program, as a process of its own with a home of its own.
#include "MossbankCore/Support/Failure.h"
#include "bench/BenchBounds.h"
#include "bench/BenchCheck.h"
#include "bench/BenchMemory.h"
#include "bench/BenchOutput.h"
#include "bench/BenchSession.h"
#include "bench/BenchTiming.h"
#include "bench/ProgramHome.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QProcess>

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
    explicit RecordingProgram(const QString& sessionBus)
    {
        m_process.setProcessEnvironment(m_home.environment(sessionBus));
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        // A window of its own would be in front of what is recorded.
        m_process.start(ProgramHome::program(), {u"--at-login"_s});
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
        return QDir(m_home.library() + u"/Images"_s).entryList(QDir::Files).size();
    }

    /// What it last said.
    QString status()
    {
        m_process.waitForReadyRead(0);
        m_terminal += QString::fromLocal8Bit(m_process.readAll());
        return m_terminal.trimmed().section(u'\n', -1);
    }

private:
    ProgramHome m_home{"recordsAtLaunch=true\ninterval=1\n"};
    QProcess m_process;
    QString m_terminal;
};

/// One of those that are measured side by side.
struct Measured {
    QString session;
    RecordingProgram program;
    qsizetype pictures = 0;
    double processor = 0;

    void begin()
    {
        pictures = program.pictures();
        processor = program.processorMilliseconds();
    }

    /// A check is a second and its own time after the last, so there are no more than seconds.
    void end(double seconds, Bounds& bounds)
    {
        const double spent = program.processorMilliseconds() - processor;
        if (program.pictures() != pictures ||
            !program.status().contains(u"Skipped an unchanged screen"_s))
            throw Failure(u"The screen changed while the program was measured."_s);
        printFigures({{u"bench"_s, u"check"_s},
                      {u"what"_s, u"the program, one check a second"_s},
                      {u"session"_s, session},
                      {u"seconds"_s, rounded(seconds)},
                      {u"processor_ms"_s, rounded(spent)},
                      {u"processor_ms_a_second"_s, rounded(spent / seconds)},
                      {u"resident_mb"_s,
                       rounded(residentMegabytes("VmRSS", QString::number(program.process())))}});
        bounds.hold(u"the program, "_s + session, spent / seconds,
                    CheckBounds::kProcessorMilliseconds, u"ms of processor time a check"_s);
    }
};

/// A program of the session, in front of the others while this lives. None for an empty command.
class FrontProgram {
public:
    FrontProgram(const QStringList& command, const BenchSession& session)
    {
        if (command.isEmpty())
            return;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, session.address());
        m_process.setProcessEnvironment(environment);
        m_process.setStandardOutputFile(QProcess::nullDevice());
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.start(command.constFirst(), command.mid(1));
        constexpr auto kUntilDrawn = std::chrono::seconds(3);
        std::this_thread::sleep_for(kUntilDrawn);
        if (m_process.waitForFinished(0) || m_process.state() != QProcess::Running)
            throw Failure(u"%1 does not run."_s.arg(command.constFirst()));
    }

    ~FrontProgram()
    {
        m_process.kill();
        m_process.waitForFinished(kPatience);
    }
    Q_DISABLE_COPY_MOVE(FrontProgram)

private:
    QProcess m_process;
};

void waitUntilOn(const BenchSession& session, qint64 process)
{
    const QDeadlineTimer deadline(kPatience);
    while (!session.isOn(process)) {
        if (deadline.hasExpired())
            throw Failure(u"The program does not listen to the accessibility bus."_s);
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
}

} // namespace

void measureProgram(int seconds, const QStringList& front, Bounds& bounds)
{
    const BenchSession session;
    const FrontProgram inFront(front, session);
    Measured alone = {u"no session bus"_s,
                      RecordingProgram(QString::fromUtf16(ProgramHome::kNoBus))};
    Measured listening = {u"a session bus, accessibility on"_s,
                          RecordingProgram(session.address())};
    waitUntilOn(session, listening.program.process());
    alone.program.waitUntilUnchanged();
    listening.program.waitUntilUnchanged();
    alone.begin();
    listening.begin();
    const double wall =
        milliseconds([&] { std::this_thread::sleep_for(std::chrono::seconds(seconds)); }) /
        kThousand;
    alone.end(wall, bounds);
    listening.end(wall, bounds);
}

} // namespace mossbank
