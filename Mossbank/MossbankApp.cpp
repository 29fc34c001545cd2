// SPDX-License-Identifier: Apache-2.0
//
// The program: builds the parts, hands them over, starts.
#include "Mossbank/CallsFromOutside.h"
#include "Mossbank/ChoicesInWords.h"
#include "Mossbank/CommandLine.h"
#include "Mossbank/MissingParts.h"
#include "Mossbank/Model/AppModel.h"
#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Model/SampleFolder.h"
#include "Mossbank/Model/Texts.h"
#include "Mossbank/Platform/PlatformFactory.h"
#include "Mossbank/QuitEvents.h"
#include "Mossbank/SingleInstance.h"
#include "Mossbank/TerminalStatus.h"
#include "Mossbank/TerminationSignals.h"
#include "Mossbank/Translations/LinuxWording.h"
#include "Mossbank/UserInterface.h"
#include "Mossbank/Views/ApplicationChooser/ApplicationChooserWindow.h"
#include "Mossbank/Views/PaletteAppearance.h"
#include "Mossbank/Views/QuitQuestion/QuitQuestionWindow.h"
#include "Mossbank/Views/Snapshot/Snapshot.h"
#include "Mossbank/Views/Snapshot/SnapshotStage.h"
#include "Mossbank/WindowSystem.h"
#include "MossbankCore/Library/LibraryLocation.h"
#include "MossbankCore/Support/Failure.h"
#include "MossbankCore/Support/SystemClock.h"

#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QThreadPool>

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <optional>
#include <thread>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

constexpr int kFailed = 1;

/// The user's, or those that a look at the sample library begins with.
std::unique_ptr<Preferences> makePreferences(const Platform& platform,
                                             const SnapshotOptions& options)
{
    if (!options.isDemo())
        return std::make_unique<Preferences>(Preferences::userPath(), platform.passwordManagers);
    Preferences::Sample sample;
    sample.answerEngine = options.engine().value_or(sample.answerEngine);
    sample.embeddingModel = options.meaning().value_or(sample.embeddingModel);
    return std::make_unique<Preferences>(sample, platform.passwordManagers);
}

OpenedLibrary openLibrary(const Platform& platform, const QString& library,
                          const SnapshotOptions& options)
{
    if (!options.isDemo())
        return OpenedLibrary::at(library, platform.keychain.get());
    OpenedLibrary opened = OpenedLibrary::at(library, nullptr);
    opened.sample = {.isEmpty = options.isFirstRun(),
                     .scale = options.scale(),
                     .scaleInterval = options.scaleInterval()};
    return opened;
}

/// Takes the picture that the command line asks for, once there is a list to show.
void takeSnapshot(Snapshot& snapshot, AppModel& model, const SnapshotStage& stage)
{
    QObject::connect(&snapshot, &Snapshot::failed, &model,
                     [](const QString& text) { TerminalStatus::complain(u"snapshot: "_s + text); });
    // Whoever has asked for the picture has asked for the end.
    QObject::connect(&snapshot, &Snapshot::ended, &model,
                     [&model] { model.quitGuard().quit(QuitGuard::Cause::Interrupt); });
    QObject::connect(
        &model.launch(), &Launch::listed, &snapshot,
        [&snapshot, &model, stage] {
            snapshot.takeWhenAsked(
                true, [&snapshot, &model, stage] { prepareWorkspace(snapshot, model, stage); });
        },
        Qt::SingleShotConnection);
}

int run(const Platform& platform, const QString& library, const CommandLine& commandLine)
{
    const bool isDemo = commandLine.snapshot.isDemo();
    SystemClock clock;
    ApplicationChooserWindow applicationChooser(*platform.installedApplications);
    PaletteAppearance appearance(*platform.desktopSettings);
    QuitQuestionWindow quitQuestion;
    const auto preferences = makePreferences(platform, commandLine.snapshot);
    AppModel model({.clock = clock,
                    .calendar = Calendar::current,
                    .screen = *platform.screen,
                    .frontApplication = *platform.frontApplication,
                    .screenState = *platform.screenState,
                    .secureInput = *platform.secureInput,
                    .sessionEvents = *platform.sessionEvents,
                    .addresses = *platform.addresses,
                    .applicationChooser = applicationChooser,
                    .appearance = appearance,
                    .loginService = *platform.loginService,
                    .quitQuestion = quitQuestion,
                    .relauncher = *platform.relauncher,
                    .updates = *platform.updates,
                    .recognizer = *platform.recognizer,
                    .preferences = *preferences},
                   openLibrary(platform, library, commandLine.snapshot));
    const TerminalStatus terminal(model.recorder(), clock, Calendar::current);
    const TerminationSignals signals;
    const QuitEvents quitEvents;
    followEnds(signals, quitEvents, model);
    UserInterface userInterface(model, *preferences, clock, platform);
    followCalls(*platform.activation, model);
    QObject::connect(&model.sampleLibrary(), &SampleLibrary::measured, &model,
                     &TerminalStatus::complain);
    Snapshot snapshot(commandLine.snapshot, clock, appearance);
    takeSnapshot(snapshot, model, userInterface.stage());

    TerminalStatus::say(localized("Library: %1").arg(library));
    if (!isDemo)
        sayWhatChoicesMean(*preferences);
    terminal.show();
    model.finishedLaunching();
    // What a look at the sample library does without is missed by nobody.
    std::optional<MissingParts> missing;
    if (!isDemo)
        missing.emplace(platform, *preferences);
    if (!commandLine.isAtLogin)
        userInterface.open();
    return QCoreApplication::exec();
}

/// A program that is started without them would have its lines written into whatever it opens
/// first.
void openStandardFiles()
{
    for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The lowest number that is free, which is this one.
        if (::fcntl(file, F_GETFD) < 0 && ::open("/dev/null", O_RDWR) < 0)
            std::abort();
    }
}

/// Where there can be no windows, one that can still say so.
std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv, bool hasWindows)
{
    if (!hasWindows)
        return std::make_unique<QCoreApplication>(argc, argv);
    auto application = makeWindowedApplication(argc, argv);
    // It goes on recording without any.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    return application;
}

/// Holds the library. One that another ends for waits until it has.
std::unique_ptr<SingleInstance> takeLibrary(const QString& library, bool isRelaunched)
{
    // The end of the other may wait ten seconds for what it saves, and then for a reading that
    // takes all the time it may on a busy machine.
    constexpr auto kPatience = std::chrono::minutes(2);
    constexpr auto kBetweenTries = std::chrono::milliseconds(100);
    const QDeadlineTimer deadline(isRelaunched ? kPatience : std::chrono::seconds(0));
    auto instance = std::make_unique<SingleInstance>(library);
    while (!instance->isFirst() && !deadline.hasExpired()) {
        std::this_thread::sleep_for(kBetweenTries);
        instance = std::make_unique<SingleInstance>(library);
    }
    return instance;
}

/// Whoever starts the program once more means the one that runs.
int callFirst(const SingleInstance& instance, const CommandLine& commandLine)
{
    TerminalStatus::complain(instance.whoIsFirst());
    // At login nobody asks for anything: what was to be started is running.
    if (commandLine.isAtLogin)
        return 0;
    const auto process = instance.firstProcess();
    if (!process)
        return kFailed;
    const auto activation = makeProgramActivation(QString::fromUtf16(kOwnBundleID));
    return activation->activateFirst(*process) ? 0 : kFailed;
}

int runToEnd(const Platform& platform, const QString& library, const CommandLine& commandLine)
{
    const int status = run(platform, library, commandLine);
    // A reading may be under way still; it uses the platform's recogniser.
    QThreadPool::globalInstance()->waitForDone();
    return status;
}

/// Nothing of the user's is opened, and nobody is called: one that records runs beside it.
int startSample(const Availability& windows, const CommandLine& commandLine)
{
    if (!windows.isAvailable) {
        TerminalStatus::complain(windows.reason);
        return kFailed;
    }
    const SampleFolder library;
    return runToEnd(makeSamplePlatform(), library.path(), commandLine);
}

int start(const Availability& windows, const CommandLine& commandLine)
{
    if (commandLine.snapshot.isDemo())
        return startSample(windows, commandLine);
    const QString library = LibraryLocation::library();
    const auto instance = takeLibrary(library, commandLine.isRelaunched);
    if (!instance->problem().isEmpty()) {
        TerminalStatus::complain(instance->problem());
        return kFailed;
    }
    if (!instance->isFirst())
        return callFirst(*instance, commandLine);
    if (!windows.isAvailable) {
        TerminalStatus::complain(windows.reason);
        return kFailed;
    }
    const Platform platform = makePlatform(QString::fromUtf16(kOwnBundleID));
    const Availability screen = platform.screen->availability();
    // A picture of the windows needs no screen to record.
    if (!screen.isAvailable && !commandLine.snapshot.path()) {
        TerminalStatus::complain(screen.reason);
        return kFailed;
    }
    return runToEnd(platform, library, commandLine);
}

int startOrSayWhyNot(const Availability& windows, const CommandLine& commandLine)
{
    try {
        return start(windows, commandLine);
    } catch (const Failure& failure) {
        TerminalStatus::complain(failure.message());
        return kFailed;
    }
}

} // namespace

int main(int argc, char* argv[])
{
    keepMemoryTogether();
    openStandardFiles();
    Availability windows = windowsAvailability();
    if (runsWithoutScreen(argc, argv))
        windows = {};
    const auto application = makeApplication(argc, argv, windows.isAvailable);
    QCoreApplication::setApplicationName(u"Mossbank"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(MOSSBANK_VERSION));
    LinuxWording wording;
    QCoreApplication::installTranslator(&wording);
    const CommandLine commandLine = parseCommandLine();
    const int status = startOrSayWhyNot(windows, commandLine);
    // Everything of this program is closed. Qt would take leave of the X server now, and wait for
    // one that has stopped answering for as long as that takes.
    std::_Exit(status);
}
