// SPDX-License-Identifier: Apache-2.0
#include "bench/BenchStart.h"

#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Support/Failure.h"
#include "bench/BenchBounds.h"
#include "bench/BenchMemory.h"
#include "bench/BenchOutput.h"
#include "bench/BenchTiming.h"
#include "bench/ProgramHome.h"
#include "bench/SyntheticLibrary.h"

#include <QCommandLineParser>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QProcess>

#include <algorithm>
#include <chrono>
#include <optional>
#include <thread>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

constexpr int kRounds = 21;
constexpr int kPatience = 30'000;
/// What it says when its library is open.
constexpr const char* kReady = "Recording is off";

/// The program under measurement, without a window. Ended when this goes.
class MeasuredProgram {
public:
    MeasuredProgram(const QProcessEnvironment& environment, const QStringList& arguments)
    {
        m_process.setProcessEnvironment(environment);
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.start(ProgramHome::program(), arguments);
    }

    ~MeasuredProgram()
    {
        m_process.terminate();
        if (!m_process.waitForFinished(kPatience)) {
            m_process.kill();
            m_process.waitForFinished(kPatience);
        }
    }
    Q_DISABLE_COPY_MOVE(MeasuredProgram)

    void waitFor(const QByteArray& line)
    {
        const QDeadlineTimer deadline(kPatience);
        while (!m_said.contains(line)) {
            if (deadline.hasExpired() || m_process.state() == QProcess::NotRunning)
                throw Failure(u"The program does not say \"%1\": %2"_s.arg(
                    QString::fromUtf8(line), QString::fromUtf8(m_said)));
            m_process.waitForReadyRead(kPatience);
            m_said += m_process.readAll();
        }
    }

    void waitForEnd() { m_process.waitForFinished(kPatience); }
    qint64 process() const { return m_process.processId(); }

private:
    QProcess m_process;
    QByteArray m_said;
};

void provideLibrary(const QString& library, int rows, const QString& kept)
{
    SyntheticScreenshots screenshots;
    if (kept.isEmpty())
        makeLibrary(library, rows, screenshots);
    else
        copyLibrary(keptLibrary(kept, rows, screenshots), library);
}

/// What a window lists first.
void list(const QString& library)
{
    constexpr int kListing = 1501;
    HistoryStore store(HistoryStore::ReadingOnly{.root = library});
    (void)store.fetch({.limit = kListing}).result();
    (void)store.stats().result();
}

/// How long it takes to end does not count.
PairedTimes timesOfStarts(const ProgramHome& home)
{
    PairedTimes starts;
    for (int round = 0; round < kRounds; ++round) {
        std::optional<MeasuredProgram> program;
        starts.times.push_back(milliseconds([&] {
            program.emplace(home.environment(), QStringList());
            program->waitFor(kReady);
        }));
        program.reset();
        starts.baseline.push_back(milliseconds([&] {
            program.emplace(home.environment(), QStringList{u"--version"_s});
            program->waitForEnd();
        }));
    }
    return starts;
}

double ownMegabytes(const MeasuredProgram& program)
{
    constexpr double kMegabyte = 1024 * 1024;
    return static_cast<double>(ownBytes(program.process())) / kMegabyte;
}

void measureStart(int rows, const QString& kept, Bounds& bounds)
{
    const ProgramHome home("recordsAtLaunch=false\n");
    provideLibrary(home.library(), rows, kept);
    const PairedTimes starts = timesOfStarts(home);
    printTimes({{u"bench"_s, u"start"_s},
                {u"what"_s, u"the program until its library is open"_s},
                {u"rows"_s, rows}},
               starts);
    std::vector<double> listings;
    for (int round = 0; round < kRounds; ++round)
        listings.push_back(milliseconds([&] { list(home.library()); }));
    printTimes({{u"bench"_s, u"start"_s}, {u"what"_s, u"the library opened and listed"_s}},
               listings);
    bounds.hold(u"start to ready"_s, median(starts.times) + median(listings),
                ProgramBounds::kReadyMilliseconds, u"ms"_s);

    MeasuredProgram program(home.environment(), {u"--at-login"_s});
    program.waitFor(kReady);
    constexpr auto kUntilSettled = std::chrono::seconds(2);
    std::this_thread::sleep_for(kUntilSettled);
    const double own = ownMegabytes(program);
    printFigures({{u"bench"_s, u"start"_s},
                  {u"what"_s, u"memory of its own, not recording"_s},
                  {u"own_mb"_s, rounded(own)}});
    bounds.hold(u"memory of its own"_s, own, ProgramBounds::kOwnMegabytes, u"MB"_s);
}

/// A terminal in which lines come and go.
class RestlessTerminal {
public:
    RestlessTerminal()
    {
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.start(
            u"xterm"_s,
            {u"-geometry"_s, u"150x45"_s, u"-e"_s, u"sh"_s, u"-c"_s,
             u"while :; do find /usr/share -name '*a*' | shuf -n 40; sleep 0.3; done"_s});
        constexpr auto kUntilDrawn = std::chrono::seconds(3);
        std::this_thread::sleep_for(kUntilDrawn);
        if (m_process.waitForFinished(0) || m_process.state() != QProcess::Running)
            throw Failure(u"xterm does not run. It takes a display."_s);
    }
    ~RestlessTerminal()
    {
        m_process.kill();
        m_process.waitForFinished(kPatience);
    }
    Q_DISABLE_COPY_MOVE(RestlessTerminal)

private:
    QProcess m_process;
};

/// The least and the most that is its own during so many seconds. The least is what is left between
/// two pictures; the most, while one is read.
void measureOwn(const MeasuredProgram& program, const char* when, double seconds, Bounds& bounds)
{
    constexpr auto kBetween = std::chrono::milliseconds(100);
    double least = ownMegabytes(program);
    double most = least;
    const QDeadlineTimer end(std::chrono::milliseconds(static_cast<int>(seconds * 1000)));
    while (!end.hasExpired()) {
        std::this_thread::sleep_for(kBetween);
        const double own = ownMegabytes(program);
        least = std::min(least, own);
        most = std::max(most, own);
    }
    printFigures({{u"bench"_s, u"hour"_s},
                  {u"when"_s, QString::fromUtf8(when)},
                  {u"own_mb"_s, rounded(least)},
                  {u"own_while_reading_mb"_s, rounded(most)}});
    bounds.hold(QString::fromUtf8(when), least, ProgramBounds::kOwnMegabytes, u"MB"_s);
}

void measureHour(int minutes, Bounds& bounds)
{
    const RestlessTerminal terminal;
    const ProgramHome home("recordsAtLaunch=true\ninterval=30\n");
    // A reading takes as long as it takes: were the clock faster, there would be no rest between
    // two of them.
    constexpr int kTimesAsFast = 10;
    QProcessEnvironment environment = home.environment();
    environment.insert(u"LD_PRELOAD"_s, u"/usr/$LIB/faketime/libfaketimeMT.so.1"_s);
    environment.insert(u"FAKETIME"_s, u"+0 x%1"_s.arg(kTimesAsFast));
    MeasuredProgram program(environment, {u"--at-login"_s});
    program.waitFor("Saved at");
    constexpr double kRestOfAPicture = 12;
    measureOwn(program, "after the first picture", kRestOfAPicture, bounds);
    constexpr int kMinute = 60;
    std::this_thread::sleep_for(std::chrono::seconds(minutes * kMinute / kTimesAsFast));
    measureOwn(program, "after all of it", kRestOfAPicture, bounds);
    printFigures(
        {{u"bench"_s, u"hour"_s},
         {u"minutes"_s, minutes},
         {u"pictures"_s, QDir(home.library() + u"/Images"_s).entryList(QDir::Files).size()}});
}

} // namespace

int benchStart(const QStringList& arguments)
{
    QCommandLineParser parser;
    const QCommandLineOption rowsOption(u"rows"_s, {}, u"N"_s);
    const QCommandLineOption keepOption(u"keep"_s, {}, u"DIR"_s);
    parser.addOptions({rowsOption, keepOption});
    bool isNumber = false;
    const bool isParsed = parser.parse(QStringList{u"start"_s} + arguments);
    const int rows = parser.value(rowsOption).toInt(&isNumber);
    if (!isParsed || !parser.positionalArguments().isEmpty() || !isNumber || rows < 0)
        return benchWrongUse("start --rows N [--keep DIR]");
    Bounds bounds;
    try {
        measureStart(rows, parser.value(keepOption), bounds);
    } catch (const Failure& failure) {
        return benchFailed(failure.message());
    }
    return bounds.exitStatus();
}

int benchHour(const QStringList& arguments)
{
    constexpr int kHour = 60;
    bool isNumber = arguments.isEmpty();
    const int minutes = arguments.isEmpty() ? kHour : arguments.constFirst().toInt(&isNumber);
    if (arguments.size() > 1 || !isNumber || minutes < 1)
        return benchWrongUse("hour [MINUTES]");
    Bounds bounds;
    try {
        measureHour(minutes, bounds);
    } catch (const Failure& failure) {
        return benchFailed(failure.message());
    }
    return bounds.exitStatus();
}

} // namespace mossbank
